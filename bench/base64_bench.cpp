// Base64 both ways on 1 MiB of bytes, the size of a large binary field or attachment.

#include <benchmark/benchmark.h>
#include <bsutils/cpbase64converter.h>

#include <cstdint>
#include <vector>

namespace {

constexpr std::int32_t kBytes = 1 << 20;

std::vector<unsigned char> sampleBytes() {
  std::vector<unsigned char> bytes(kBytes);
  for (std::int32_t i = 0; i < kBytes; ++i) bytes[i] = static_cast<unsigned char>(i * 131 + 7);
  return bytes;
}

ZanStringBase sampleText() {
  const std::vector<unsigned char> bytes = sampleBytes();
  ZanStringBase text;
  CPBase64Converter::binToBase64(bytes.data(), kBytes, text);
  return text;
}

// Counts the bytes on the binary side in both directions, so the two rates compare directly.
void BM_Base64Encode(benchmark::State& state) {
  const std::vector<unsigned char> bytes = sampleBytes();
  for (auto _ : state) {
    ZanStringBase text;
    CPBase64Converter::binToBase64(bytes.data(), kBytes, text);
    benchmark::DoNotOptimize(text.data());
  }
  state.SetBytesProcessed(state.iterations() * kBytes);
}
BENCHMARK(BM_Base64Encode);

void BM_Base64Decode(benchmark::State& state) {
  const ZanStringBase text = sampleText();
  for (auto _ : state) {
    PWFData value = CPBase64Converter::binFromBase64(text.data(), text.length());
    benchmark::DoNotOptimize(value.getDataValue());
  }
  state.SetBytesProcessed(state.iterations() * kBytes);
}
BENCHMARK(BM_Base64Decode);

// The same text in MIME lines of 76 characters: each line break is decoded unit by unit.
void BM_Base64DecodeMimeLines(benchmark::State& state) {
  const ZanStringBase line = sampleText();
  ZanStringBase text;
  for (std::int32_t start = 0; start < line.length(); start += 76) {
    text.append(line.substring(start, 76)).append(u'\r').append(u'\n');
  }
  for (auto _ : state) {
    PWFData value = CPBase64Converter::binFromBase64(text.data(), text.length());
    benchmark::DoNotOptimize(value.getDataValue());
  }
  state.SetBytesProcessed(state.iterations() * kBytes);
}
BENCHMARK(BM_Base64DecodeMimeLines);

}  // namespace
