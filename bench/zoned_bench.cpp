// Zoned decimal on a 7-digit EBCDIC field (CCSID 37) with the sign in the zone of the last digit,
// the common mainframe form: each reader on the field, each writer into it. The Padded cases write
// a shorter value, which the writer fills out with zeros; the Tables cases pass sign tables, which
// take every field through the code page.

#include <benchmark/benchmark.h>
#include <bsutils/dataconv.h>

#include <cstdint>

namespace {

constexpr std::int32_t kCcsid = 37;
constexpr std::int32_t kFieldSize = 7;
constexpr std::int32_t kScale = 2;
constexpr auto kSign = DataCnv::eTrailingEmbeddedSign;
constexpr auto kJustification = DataCnv::eRightJustified;
constexpr char16_t kPad = u'0';
constexpr unsigned char kField[kFieldSize] = {0xF1, 0xF2, 0xF3, 0xF4,
                                              0xF5, 0xF6, 0xD7};  // -1234567, -12345.67
constexpr const char16_t* kPositiveSigns = u"{ABCDEFGHI";
constexpr const char16_t* kNegativeSigns = u"}JKLMNOPQR";

void BM_ZonedToInt64(benchmark::State& state) {
  DataCnv cnv(kCcsid);
  for (auto _ : state) {
    benchmark::DoNotOptimize(cnv.ExtDecToInt64(kField, kFieldSize, kSign, kJustification, kPad,
                                               true, false, nullptr, nullptr));
  }
}
BENCHMARK(BM_ZonedToInt64);

void BM_ZonedToInt64Tables(benchmark::State& state) {
  DataCnv cnv(kCcsid);
  for (auto _ : state) {
    benchmark::DoNotOptimize(cnv.ExtDecToInt64(kField, kFieldSize, kSign, kJustification, kPad,
                                               true, false, kPositiveSigns, kNegativeSigns));
  }
}
BENCHMARK(BM_ZonedToInt64Tables);

void BM_ZonedToDec(benchmark::State& state) {
  DataCnv cnv(kCcsid);
  for (auto _ : state) {
    PWFData value = cnv.ExtDecToDec(kField, kFieldSize, kScale, kSign, kJustification, kPad, true,
                                    false, nullptr, nullptr);
    benchmark::DoNotOptimize(value);
  }
}
BENCHMARK(BM_ZonedToDec);

void BM_ZonedToDbl(benchmark::State& state) {
  DataCnv cnv(kCcsid);
  for (auto _ : state) {
    benchmark::DoNotOptimize(cnv.ExtDecToDbl(kField, kFieldSize, kScale, kSign, kJustification,
                                             kPad, true, false, nullptr, nullptr));
  }
}
BENCHMARK(BM_ZonedToDbl);

void BM_ZonedFromInt64(benchmark::State& state) {
  DataCnv cnv(kCcsid);
  unsigned char field[kFieldSize];
  for (auto _ : state) {
    std::int32_t size = kFieldSize;
    cnv.ExtDecFromInt64(-1234567, field, size, kSign, kJustification, kPad, true, false, nullptr,
                        nullptr);
    benchmark::DoNotOptimize(field);
    benchmark::ClobberMemory();
  }
}
BENCHMARK(BM_ZonedFromInt64);

void BM_ZonedFromInt64Padded(benchmark::State& state) {
  DataCnv cnv(kCcsid);
  unsigned char field[kFieldSize];
  for (auto _ : state) {
    std::int32_t size = kFieldSize;
    cnv.ExtDecFromInt64(-42, field, size, kSign, kJustification, kPad, true, false, nullptr,
                        nullptr);
    benchmark::DoNotOptimize(field);
    benchmark::ClobberMemory();
  }
}
BENCHMARK(BM_ZonedFromInt64Padded);

void BM_ZonedFromInt64Tables(benchmark::State& state) {
  DataCnv cnv(kCcsid);
  unsigned char field[kFieldSize];
  for (auto _ : state) {
    std::int32_t size = kFieldSize;
    cnv.ExtDecFromInt64(-1234567, field, size, kSign, kJustification, kPad, true, false,
                        kPositiveSigns, kNegativeSigns);
    benchmark::DoNotOptimize(field);
    benchmark::ClobberMemory();
  }
}
BENCHMARK(BM_ZonedFromInt64Tables);

void BM_ZonedFromDec(benchmark::State& state) {
  DataCnv cnv(kCcsid);
  unsigned char field[kFieldSize];
  for (auto _ : state) {
    std::int32_t size = kFieldSize;
    cnv.ExtDecFromDec(u"-12345.67", field, size, kScale, kSign, kJustification, kPad, true, false,
                      nullptr, nullptr);
    benchmark::DoNotOptimize(field);
    benchmark::ClobberMemory();
  }
}
BENCHMARK(BM_ZonedFromDec);

void BM_ZonedFromDbl(benchmark::State& state) {
  DataCnv cnv(kCcsid);
  unsigned char field[kFieldSize];
  for (auto _ : state) {
    std::int32_t size = kFieldSize;
    cnv.ExtDecFromDbl(-12345.67, field, size, kScale, kSign, kJustification, kPad, true, false,
                      nullptr, nullptr);
    benchmark::DoNotOptimize(field);
    benchmark::ClobberMemory();
  }
}
BENCHMARK(BM_ZonedFromDbl);

}  // namespace
