// The text buffer writer on 1 MiB of EBCDIC (CCSID 37) written as pieces of 20 characters, the
// size of a short field, beside raw ICU over the same text. Rates count the EBCDIC bytes written
// (one per character).

#include <benchmark/benchmark.h>
#include <bsutils/bytebuffer.h>
#include <bsutils/textbufferwriter.h>
#include <unicode/ucnv.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string_view>
#include <vector>

namespace {

constexpr std::int32_t kUnits = 1 << 20;
constexpr std::int32_t kPiece = 20;

std::vector<char16_t> sampleText() {
  constexpr std::u16string_view kSentence = u"The quick brown fox jumps over 13 lazy dogs. ";
  std::vector<char16_t> text(kUnits);
  for (std::int32_t i = 0; i < kUnits; ++i) text[i] = kSentence[i % kSentence.size()];
  return text;
}

template <class AppendPiece>
void writeInPieces(const std::vector<char16_t>& text, AppendPiece appendPiece) {
  for (std::int32_t start = 0; start < kUnits; start += kPiece) {
    appendPiece(text.data() + start, std::min(kPiece, kUnits - start));
  }
}

void BM_TextBufferWriterCachedPieces(benchmark::State& state) {
  const std::vector<char16_t> text = sampleText();
  ReadWriteByteBuffer buffer;
  TextBufferWriter writer(&buffer, 37, BigEndian);
  for (auto _ : state) {
    buffer.reset();
    writeInPieces(text, [&](const char16_t* piece, std::int32_t length) {
      writer.appendStrCache(piece, length);
    });
    writer.flush();
    benchmark::DoNotOptimize(buffer.getData(0));
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(state.iterations() * kUnits);
}
BENCHMARK(BM_TextBufferWriterCachedPieces);

// The same pieces converted one by one, without the cache.
void BM_TextBufferWriterUncachedPieces(benchmark::State& state) {
  const std::vector<char16_t> text = sampleText();
  ReadWriteByteBuffer buffer;
  TextBufferWriter writer(&buffer, 37, BigEndian);
  for (auto _ : state) {
    buffer.reset();
    writeInPieces(
        text, [&](const char16_t* piece, std::int32_t length) { writer.appendStr(piece, length); });
    benchmark::DoNotOptimize(buffer.getData(0));
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(state.iterations() * kUnits);
}
BENCHMARK(BM_TextBufferWriterUncachedPieces);

std::unique_ptr<UConverter, void (*)(UConverter*)> openIbm37() {
  UErrorCode status = U_ZERO_ERROR;
  std::unique_ptr<UConverter, void (*)(UConverter*)> converter(ucnv_open("ibm-37", &status),
                                                               ucnv_close);
  if (U_FAILURE(status)) throw std::runtime_error(u_errorName(status));
  return converter;
}

// The bound: one call over the whole text into a target that fits it.
void BM_IcuFromUnicodeWhole(benchmark::State& state) {
  const std::vector<char16_t> text = sampleText();
  const auto converter = openIbm37();
  std::vector<char> bytes(kUnits);
  for (auto _ : state) {
    char* target = bytes.data();
    const char16_t* source = text.data();
    UErrorCode status = U_ZERO_ERROR;
    ucnv_fromUnicode(converter.get(), &target, bytes.data() + kUnits, &source, text.data() + kUnits,
                     nullptr, true, &status);
    benchmark::DoNotOptimize(target);
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(state.iterations() * kUnits);
}
BENCHMARK(BM_IcuFromUnicodeWhole);

// Raw ICU called for every piece, as a writer without a cache would call it.
void BM_IcuFromUnicodePieces(benchmark::State& state) {
  const std::vector<char16_t> text = sampleText();
  const auto converter = openIbm37();
  std::vector<char> bytes(kUnits);
  for (auto _ : state) {
    char* target = bytes.data();
    writeInPieces(text, [&](const char16_t* piece, std::int32_t length) {
      UErrorCode status = U_ZERO_ERROR;
      ucnv_fromUnicode(converter.get(), &target, bytes.data() + kUnits, &piece, piece + length,
                       nullptr, true, &status);
    });
    benchmark::DoNotOptimize(target);
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(state.iterations() * kUnits);
}
BENCHMARK(BM_IcuFromUnicodePieces);

}  // namespace
