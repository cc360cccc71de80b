// Extensions, from the public face down.

#include <condition_variable>
#include <cstdint>
#include <cstdlib>
#include <future>
#include <iostream>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include <benchmark/benchmark.h>

#include "QEXCore_iOS/QEXCore.h"
#include "QEXCore_iOS/QEXExtension.h"
#include "QEXCore_iOS/QEXExtensionApi.h"
#include "QEXCore_iOS/QEXExtensionEvent.h"
#include "QEXCore_iOS/QEXExtensionListener.h"
#include "SampleValues.h"

namespace {

using Event = std::shared_ptr<QEXExtensionEvent>;

constexpr const char* kType = "benchmark.extension";
constexpr std::int64_t kEventsPerRound = 20'000;  // well below the bounds of the queues

// What the listeners have heard, for others to wait for.
struct Heard {
  std::mutex mutex;
  std::condition_variable changed;
  std::int64_t rounds = 0;

  void WaitFor(std::int64_t awaited) {
    std::unique_lock lock(mutex);
    changed.wait(lock, [&] { return rounds >= awaited; });
  }
};

template <bool ReadsData>
Heard& TheHeard() {
  static Heard heard;
  return heard;
}

template <bool ReadsData>
class CountingListener : public QEXExtensionListener {
 public:
  void hear(const Event& event) override {
    if constexpr (ReadsData) benchmark::DoNotOptimize(event->eventData());
    if (++count_ % kEventsPerRound != 0) return;
    Heard& heard = TheHeard<ReadsData>();
    const std::lock_guard lock(heard.mutex);
    ++heard.rounds;
    heard.changed.notify_all();
  }

 private:
  std::int64_t count_ = 0;
};

const char* SourceFor(bool readsData) { return readsData ? "read" : "heard"; }

class BenchmarkExtension : public QEXExtension {
 public:
  static std::promise<std::shared_ptr<QEXExtensionApi>>& Ready() {
    static std::promise<std::shared_ptr<QEXExtensionApi>> ready;
    return ready;
  }

  std::optional<std::string> name() const override { return "benchmark"; }
  std::shared_ptr<QEXExtension> init() override {
    const auto own = api();
    own->registerListener(Platform::ClassOf<CountingListener<false>>(), kType, SourceFor(false),
                          nullptr);
    own->registerListener(Platform::ClassOf<CountingListener<true>>(), kType, SourceFor(true),
                          nullptr);
    Ready().set_value(own);
    return QEXExtension::init();
  }
};

// The API of the one extension of this program, registered at the first call.
const std::shared_ptr<QEXExtensionApi>& Api() {
  static const std::shared_ptr<QEXExtensionApi> api = [] {
    QEXCore::registerExtension(Platform::ClassOf<BenchmarkExtension>(), nullptr);
    return BenchmarkExtension::Ready().get_future().get();
  }();
  return api;
}

void DrainHub() {
  std::promise<void> drained;
  QEXCore::start([&drained] { drained.set_value(); });
  drained.get_future().wait();
}

const Platform::Value& FiveEntries() {
  static const Platform::Value data = {{"sku", "A-17"},
                                       {"size", "M"},
                                       {"colour", "midnight blue"},
                                       {"price", 19.9},
                                       {"quantity", 2}};
  return data;
}

Event NewEvent(const char* source) {
  return QEXExtensionEvent::extensionEventWithName("event", kType, source, FiveEntries(), nullptr);
}

void CheckAccepted(bool isAccepted) {
  if (isAccepted) return;
  std::cerr << "an event was refused; the figure would be too good\n";
  std::abort();
}

// The event is made anew each time, as an app does.
void DispatchNewEventWithFiveEntries(benchmark::State& state) {
  DrainHub();
  for (auto _ : state) CheckAccepted(QEXCore::dispatchEvent(NewEvent("nobody"), nullptr));
  DrainHub();
}
BENCHMARK(DispatchNewEventWithFiveEntries)->Iterations(kEventsPerRound)->UseRealTime();

template <bool ReadsData>
void ToOneExtensionListener(benchmark::State& state) {
  static std::int64_t rounds = 0;
  Api();
  const Event event = NewEvent(SourceFor(ReadsData));
  DrainHub();
  for (auto _ : state) {
    for (std::int64_t sent = 0; sent < kEventsPerRound; ++sent) {
      CheckAccepted(QEXCore::dispatchEvent(event, nullptr));
    }
    TheHeard<ReadsData>().WaitFor(++rounds);
  }
  state.SetItemsProcessed(state.iterations() * kEventsPerRound);
}
BENCHMARK(ToOneExtensionListener<false>)->Name("ExtensionHears")->Iterations(5)->UseRealTime();
BENCHMARK(ToOneExtensionListener<true>)->Name("ExtensionReads")->Iterations(5)->UseRealTime();

void SharedStateSetAndGet(benchmark::State& state) {
  const auto api = Api();
  const Platform::Value content = Benchmarks::SampleValue(static_cast<std::size_t>(state.range(0)));
  DrainHub();
  for (auto _ : state) {
    CheckAccepted(api->setSharedEventState(content, nullptr, nullptr));
    benchmark::DoNotOptimize(api->getSharedEventState("benchmark", nullptr, nullptr));
  }
  DrainHub();
}
BENCHMARK(SharedStateSetAndGet)->Arg(5'000)->Iterations(5'000)->UseRealTime();

}  // namespace
