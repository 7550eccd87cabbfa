// Packed decimal on a 5-byte field (9 digits and the sign), the size of a typical amount: each
// reader on the field, each writer into it.

#include <benchmark/benchmark.h>
#include <bsutils/dataconv.h>

#include <cstdint>

namespace {

constexpr std::int32_t kFieldSize = 5;
constexpr std::int32_t kScale = 2;
constexpr auto kSigned = DataCnv::eLeadingEmbeddedSign;  // style 1 is "signed" for packed fields
constexpr unsigned char kField[kFieldSize] = {0x12, 0x34, 0x56, 0x78, 0x9D};  // -1234567.89

void BM_PackedToDec(benchmark::State& state) {
  DataCnv cnv;
  for (auto _ : state) {
    PWFData value = cnv.PckdDecToDec(kField, kFieldSize, BigEndian, kScale, kSigned);
    benchmark::DoNotOptimize(value);
  }
}
BENCHMARK(BM_PackedToDec);

void BM_PackedToInt32(benchmark::State& state) {
  DataCnv cnv;
  for (auto _ : state) {
    benchmark::DoNotOptimize(cnv.PckdDecToInt32(kField, kFieldSize, BigEndian, 0, kSigned));
  }
}
BENCHMARK(BM_PackedToInt32);

void BM_PackedToPWFInt64(benchmark::State& state) {
  DataCnv cnv;
  for (auto _ : state) {
    benchmark::DoNotOptimize(cnv.PckdDecToPWFInt64(kField, kFieldSize, BigEndian, 0, kSigned));
  }
}
BENCHMARK(BM_PackedToPWFInt64);

void BM_PackedToDbl(benchmark::State& state) {
  DataCnv cnv;
  for (auto _ : state) {
    benchmark::DoNotOptimize(cnv.PckdDecToDbl(kField, kFieldSize, BigEndian, kScale, kSigned));
  }
}
BENCHMARK(BM_PackedToDbl);

void BM_PackedFromDec(benchmark::State& state) {
  DataCnv cnv;
  unsigned char field[kFieldSize];
  for (auto _ : state) {
    std::int32_t size = kFieldSize;
    cnv.PckdDecFromDec(u"-1234567.89", field, size, BigEndian, kScale, kSigned);
    benchmark::DoNotOptimize(field);
    benchmark::ClobberMemory();
  }
}
BENCHMARK(BM_PackedFromDec);

void BM_PackedFromPWFInt64(benchmark::State& state) {
  DataCnv cnv;
  unsigned char field[kFieldSize];
  std::int64_t value = -123456789;
  for (auto _ : state) {
    std::int32_t size = kFieldSize;
    benchmark::DoNotOptimize(value);
    cnv.PckdDecFromPWFInt64(value, field, size, BigEndian, 0, kSigned);
    benchmark::DoNotOptimize(field);
    benchmark::ClobberMemory();
  }
}
BENCHMARK(BM_PackedFromPWFInt64);

void BM_PackedFromDbl(benchmark::State& state) {
  DataCnv cnv;
  unsigned char field[kFieldSize];
  double value = -1234567.89;
  for (auto _ : state) {
    std::int32_t size = kFieldSize;
    benchmark::DoNotOptimize(value);
    cnv.PckdDecFromDbl(value, field, size, BigEndian, kScale, kSigned);
    benchmark::DoNotOptimize(field);
    benchmark::ClobberMemory();
  }
}
BENCHMARK(BM_PackedFromDbl);

}  // namespace
