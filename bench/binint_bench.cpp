// A 4-byte big-endian binary integer, the commonest field of mainframe records, read and written.

#include <benchmark/benchmark.h>
#include <bsutils/dataconv.h>

#include <cstdint>

namespace {

const unsigned char kField[4] = {0x00, 0x12, 0xD6, 0x87};  // 1234567

void BM_BinIntToInt32(benchmark::State& state) {
  DataCnv cnv(37, BigEndian);
  for (auto _ : state) {
    benchmark::DoNotOptimize(cnv.IntToInt32(kField, 4, DataCnv::eLeadingEmbeddedSign));
  }
}
BENCHMARK(BM_BinIntToInt32);

void BM_BinIntToDec(benchmark::State& state) {
  DataCnv cnv(37, BigEndian);
  for (auto _ : state) benchmark::DoNotOptimize(cnv.IntToDec(kField, 4, 2));
}
BENCHMARK(BM_BinIntToDec);

void BM_BinIntFromInt32(benchmark::State& state) {
  DataCnv cnv(37, BigEndian);
  unsigned char out[4];
  std::int32_t size = 4;
  for (auto _ : state) {
    cnv.IntFromInt32(1234567, out, size, DataCnv::eLeadingEmbeddedSign);
    benchmark::ClobberMemory();
  }
}
BENCHMARK(BM_BinIntFromInt32);

void BM_BinIntFromDec(benchmark::State& state) {
  DataCnv cnv(37, BigEndian);
  unsigned char out[4];
  std::int32_t size = 4;
  for (auto _ : state) {
    cnv.IntFromDec(u"12345.67", out, size, 2);
    benchmark::ClobberMemory();
  }
}
BENCHMARK(BM_BinIntFromDec);

}  // namespace
