// Big-endian floats of 4 and 8 bytes in IEEE and HFP form, read and written, and an 8-byte IEEE
// float through decimal text. Arguments: the float format (1 IEEE, 2 HFP) and the size.

#include <benchmark/benchmark.h>
#include <bsutils/dataconv.h>

#include <cstdint>

namespace {

constexpr double kValue = -1234.5678;

void formatsAndSizes(benchmark::internal::Benchmark* benchmark) {
  benchmark->ArgNames({"format", "size"});
  for (EFloatFmt format : {IEEEFloat, HFPFloat}) {
    for (std::int32_t size : {4, 8}) benchmark->Args({format, size});
  }
}

void BM_FloatToDbl(benchmark::State& state) {
  DataCnv cnv(37, BigEndian, static_cast<EFloatFmt>(state.range(0)));
  auto size = static_cast<std::int32_t>(state.range(1));
  unsigned char field[8];
  cnv.FltFromDbl(kValue, field, size);
  for (auto _ : state) benchmark::DoNotOptimize(cnv.FltToDbl(field, size));
}
BENCHMARK(BM_FloatToDbl)->Apply(formatsAndSizes);

void BM_FloatFromDbl(benchmark::State& state) {
  DataCnv cnv(37, BigEndian, static_cast<EFloatFmt>(state.range(0)));
  auto size = static_cast<std::int32_t>(state.range(1));
  unsigned char field[8];
  for (auto _ : state) {
    cnv.FltFromDbl(kValue, field, size);
    benchmark::ClobberMemory();
  }
}
BENCHMARK(BM_FloatFromDbl)->Apply(formatsAndSizes);

void BM_FloatToDec(benchmark::State& state) {
  DataCnv cnv(37, BigEndian, IEEEFloat);
  std::int32_t size = 8;
  unsigned char field[8];
  cnv.FltFromDbl(kValue, field, size);
  for (auto _ : state) benchmark::DoNotOptimize(cnv.FltToDec(field, size, 2));
}
BENCHMARK(BM_FloatToDec);

void BM_FloatFromDec(benchmark::State& state) {
  DataCnv cnv(37, BigEndian, IEEEFloat);
  std::int32_t size = 8;
  unsigned char field[8];
  for (auto _ : state) {
    cnv.FltFromDec(u"-1234.5678", field, size, 2);
    benchmark::ClobberMemory();
  }
}
BENCHMARK(BM_FloatFromDec);

}  // namespace
