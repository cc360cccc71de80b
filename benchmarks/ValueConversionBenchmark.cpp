#include <benchmark/benchmark.h>

#include "SampleValues.h"
#include "interop/VariantConversion.h"

namespace {

void ValueToVariantAndBack(benchmark::State& state) {
  const Platform::Value value = Benchmarks::SampleValue(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) {
    benchmark::DoNotOptimize(Velmora::VariantToPlatform(Velmora::PlatformToVariant(value)));
  }
}
BENCHMARK(ValueToVariantAndBack)->Arg(500)->Arg(5'000)->Arg(100'000);

}  // namespace
