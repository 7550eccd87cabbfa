// The text buffer reader over 1 MiB of EBCDIC (CCSID 37) text, beside raw ICU converting the same
// bytes with the same converter ("ibm-37"), so that the reader's cost per byte can be compared with
// the conversion's own. Every figure is in bytes of the buffer per second.

#include <benchmark/benchmark.h>
#include <bsutils/bytebuffer.h>
#include <bsutils/textbufferreader.h>
#include <unicode/ucnv.h>

#include <cstdint>
#include <memory>
#include <vector>

namespace {

constexpr std::int32_t kBufferBytes = 1 << 20;
constexpr std::int32_t kStringUnits = 20;

// Upper-case letters, digits and spaces in EBCDIC 37, as in a record of character fields.
const std::vector<char>& ebcdicText() {
  static const std::vector<char> text = [] {
    const char alphabet[] =
        "\xC1\xC2\xC3\xC4\xC5\xC6\xC7\xC8\xC9\xD1\xD2\xD3\xD4\xD5\xD6\xD7\xD8"
        "\xD9\xE2\xE3\xE4\xE5\xE6\xE7\xE8\xE9\xF0\xF1\xF2\xF3\xF4\xF5\xF6\xF7"
        "\xF8\xF9\x40";
    std::vector<char> bytes(kBufferBytes);
    for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = alphabet[i % (sizeof alphabet - 1)];
    return bytes;
  }();
  return text;
}

// The same text with a null terminator (0x00 in every code page) after every 20 characters.
const std::vector<char>& terminatedEbcdicText() {
  static const std::vector<char> text = [] {
    std::vector<char> bytes = ebcdicText();
    for (std::size_t i = kStringUnits; i < bytes.size(); i += kStringUnits + 1) bytes[i] = 0;
    return bytes;
  }();
  return text;
}

void BM_TextBufferReaderCountedStrings(benchmark::State& state) {
  const std::vector<char>& text = ebcdicText();
  ReadOnlyByteBuffer buffer(text.data(), kBufferBytes);
  TextBufferReader reader(&buffer, 37, BigEndian);
  PWFData value;
  for (auto _ : state) {
    reader.setCurrentOffset(0);
    while (reader.getStringSection(value, kStringUnits, true)) benchmark::DoNotOptimize(value);
  }
  state.SetBytesProcessed(state.iterations() * kBufferBytes);
}
BENCHMARK(BM_TextBufferReaderCountedStrings);

void BM_TextBufferReaderTerminatedStrings(benchmark::State& state) {
  const std::vector<char>& text = terminatedEbcdicText();
  ReadOnlyByteBuffer buffer(text.data(), kBufferBytes);
  TextBufferReader reader(&buffer, 37, BigEndian);
  PWFData value;
  for (auto _ : state) {
    // The last piece has no terminator; every whole one is read.
    for (reader.setCurrentOffset(0); kBufferBytes - reader.getCurrentOffset() > kStringUnits;) {
      reader.getStringSection(value, -1, true);
      benchmark::DoNotOptimize(value);
    }
  }
  state.SetBytesProcessed(state.iterations() * kBufferBytes);
}
BENCHMARK(BM_TextBufferReaderTerminatedStrings);

void BM_TextBufferReaderCharacters(benchmark::State& state) {
  const std::vector<char>& text = ebcdicText();
  ReadOnlyByteBuffer buffer(text.data(), kBufferBytes);
  TextBufferReader reader(&buffer, 37, BigEndian);
  for (auto _ : state) {
    reader.setCurrentOffset(0);
    char16_t unit = 0;
    while (reader.getCharacter(&unit, true)) benchmark::DoNotOptimize(unit);
  }
  state.SetBytesProcessed(state.iterations() * kBufferBytes);
}
BENCHMARK(BM_TextBufferReaderCharacters);

void BM_TextBufferReaderSkipCharacters(benchmark::State& state) {
  const std::vector<char>& text = ebcdicText();
  ReadOnlyByteBuffer buffer(text.data(), kBufferBytes);
  TextBufferReader reader(&buffer, 37, BigEndian);
  for (auto _ : state) {
    benchmark::DoNotOptimize(reader.setOffsetChars(kBufferBytes));
  }
  state.SetBytesProcessed(state.iterations() * kBufferBytes);
}
BENCHMARK(BM_TextBufferReaderSkipCharacters);

std::unique_ptr<UConverter, void (*)(UConverter*)> openIbm37() {
  UErrorCode status = U_ZERO_ERROR;
  return {ucnv_open("ibm-37", &status), ucnv_close};
}

// The floor: the whole megabyte in one ucnv_toUnicode call.
void BM_IcuToUnicodeWhole(benchmark::State& state) {
  const std::vector<char>& text = ebcdicText();
  const auto converter = openIbm37();
  std::vector<char16_t> target(kBufferBytes);
  for (auto _ : state) {
    char16_t* out = target.data();
    const char* in = text.data();
    UErrorCode status = U_ZERO_ERROR;
    ucnv_toUnicode(converter.get(), &out, out + target.size(), &in, in + text.size(), nullptr, true,
                   &status);
    benchmark::DoNotOptimize(target.data());
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(state.iterations() * kBufferBytes);
}
BENCHMARK(BM_IcuToUnicodeWhole);

// Raw ICU at the reader's granularity: one call per 20-character string into a stack target.
void BM_IcuToUnicodeStrings(benchmark::State& state) {
  const std::vector<char>& text = ebcdicText();
  const auto converter = openIbm37();
  for (auto _ : state) {
    const char* in = text.data();
    const char* const end = in + text.size();
    while (end - in >= kStringUnits) {
      char16_t units[kStringUnits];
      char16_t* out = units;
      UErrorCode status = U_ZERO_ERROR;
      ucnv_toUnicode(converter.get(), &out, units + kStringUnits, &in, end, nullptr, true, &status);
      benchmark::DoNotOptimize(units);
    }
  }
  state.SetBytesProcessed(state.iterations() * kBufferBytes);
}
BENCHMARK(BM_IcuToUnicodeStrings);

}  // namespace
