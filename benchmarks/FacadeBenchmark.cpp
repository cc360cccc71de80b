#include <future>

#include <benchmark/benchmark.h>

#include "QEXCore_iOS/QEXCore.h"

namespace {

// Waits until the hub has handled every event accepted so far.
void DrainHub() {
  std::promise<void> drained;
  QEXCore::start([&drained] { drained.set_value(); });
  drained.get_future().wait();
}

void TrackActionWithFiveEntries(benchmark::State& state) {
  const Platform::Value context = {{"sku", "A-17"},
                                   {"size", "M"},
                                   {"colour", "midnight blue"},
                                   {"currency", "EUR"},
                                   {"campaign", "spring-sale-2024"}};
  DrainHub();
  for (auto _ : state) QEXCore::trackAction("addToCart", context);
  DrainHub();
}
// Well below the bound of the hub's queue, so that no event is refused.
BENCHMARK(TrackActionWithFiveEntries)->Iterations(20'000)->UseRealTime();

}  // namespace
