// The text buffer reader over 1 MiB of EBCDIC (CCSID 37) text, beside raw ICU converting the same
// bytes with the same converter ("ibm-37"), so that the reader's cost per byte can be compared with
// the conversion's own. The text is a few hundred different strings of 20 characters from a fixed
// seed, over and over, so that one repeated string flatters neither side. Every figure is in bytes
// of the buffer per second.

#include <benchmark/benchmark.h>
#include <bsutils/bytebuffer.h>
#include <bsutils/textbufferreader.h>
#include <unicode/ucnv.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <random>
#include <string_view>
#include <vector>

namespace {

constexpr std::int32_t kBufferBytes = 1 << 20;
constexpr std::int32_t kStringUnits = 20;
constexpr std::size_t kStrings = 512;

// The strings in turn until the buffer is full, each followed by `separator`; the last is cut
// short. Each string is upper-case letters, digits and spaces in EBCDIC 37, as in a record of
// character fields.
std::vector<char> stringsInTurn(std::string_view separator) {
  constexpr std::string_view kAlphabet =
      "\xC1\xC2\xC3\xC4\xC5\xC6\xC7\xC8\xC9\xD1\xD2\xD3\xD4\xD5\xD6\xD7\xD8"
      "\xD9\xE2\xE3\xE4\xE5\xE6\xE7\xE8\xE9\xF0\xF1\xF2\xF3\xF4\xF5\xF6\xF7"
      "\xF8\xF9\x40";
  std::mt19937 random(37);
  std::vector<char> strings(kStrings * kStringUnits);
  for (char& byte : strings) byte = kAlphabet[random() % kAlphabet.size()];
  std::vector<char> bytes;
  bytes.reserve(kBufferBytes + kStringUnits + separator.size());
  for (std::size_t i = 0; bytes.size() < kBufferBytes; i = (i + 1) % kStrings) {
    const auto string = strings.begin() + static_cast<std::ptrdiff_t>(i * kStringUnits);
    bytes.insert(bytes.end(), string, string + kStringUnits);
    bytes.insert(bytes.end(), separator.begin(), separator.end());
  }
  bytes.resize(kBufferBytes);
  return bytes;
}

// The strings back to back, as counted fields.
const std::vector<char>& ebcdicText() {
  static const std::vector<char> text = stringsInTurn({});
  return text;
}

// The strings each followed by a null terminator (0x00 in every code page).
const std::vector<char>& terminatedEbcdicText() {
  static const std::vector<char> text = stringsInTurn(std::string_view("\0", 1));
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

// The floor of the counted reads: one call per 20-character string of the same text into a stack
// target, checked against what the reader returns for every string before timing, so that the
// ratio of the two is read from one run. As in the reader, the source runs to the end of the text
// and the full target ends the call.
void BM_FloorTextBufferReaderCountedStrings(benchmark::State& state) {
  const std::vector<char>& text = ebcdicText();
  const auto converter = openIbm37();
  const auto convert = [&converter, end = text.data() + text.size()](const char* string,
                                                                     char16_t* units) {
    char16_t* out = units;
    const char* in = string;
    UErrorCode status = U_ZERO_ERROR;
    ucnv_toUnicode(converter.get(), &out, units + kStringUnits, &in, end, nullptr, true, &status);
    return (U_SUCCESS(status) || status == U_BUFFER_OVERFLOW_ERROR) && out == units + kStringUnits;
  };
  ReadOnlyByteBuffer buffer(text.data(), kBufferBytes);
  TextBufferReader reader(&buffer, 37, BigEndian);
  PWFData value;
  std::int32_t start = 0;
  for (; reader.getStringSection(value, kStringUnits, true); start += kStringUnits) {
    char16_t units[kStringUnits];
    std::int32_t length = 0;
    const char16_t* read = value.getStringValue(length);
    if (!convert(text.data() + start, units) || length != kStringUnits ||
        !std::equal(units, units + kStringUnits, read)) {
      std::fprintf(stderr, "the floor and the reader disagree on the string at byte %d\n", start);
      std::abort();
    }
  }
  if (start != kBufferBytes / kStringUnits * kStringUnits) {
    std::fprintf(stderr, "the reader stopped at byte %d\n", start);
    std::abort();
  }
  for (auto _ : state) {
    for (std::int32_t at = 0; kBufferBytes - at >= kStringUnits; at += kStringUnits) {
      char16_t units[kStringUnits];
      benchmark::DoNotOptimize(convert(text.data() + at, units));
      benchmark::DoNotOptimize(units);
    }
  }
  state.SetBytesProcessed(state.iterations() * kBufferBytes);
}
BENCHMARK(BM_FloorTextBufferReaderCountedStrings);

}  // namespace
