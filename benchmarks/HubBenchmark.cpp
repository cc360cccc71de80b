// Events through the hub to external modules, each with one listener for the event's type.

#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <utility>

#include <benchmark/benchmark.h>

#include "VelmoraCore/ExternalModuleListenerInterface.h"
#include "VelmoraCore/ExternalModuleServicesInterface.h"
#include "VelmoraCore/Object.h"
#include "bridge/PlatformServices.h"
#include "hub/EventHub.h"

namespace {

using Velmora::Event;
using Velmora::EventHub;

constexpr const char* kType = "benchmark.tick";
constexpr std::int64_t kEventsPerRound = 20'000;  // well below the bounds of the queues

// Counts calls and lets others wait for a number of them.
class Counter {
 public:
  void Add() {
    const std::lock_guard lock(mutex_);
    if (++count_ == awaited_) reached_.notify_all();
  }
  void WaitFor(std::int64_t count) {
    std::unique_lock lock(mutex_);
    awaited_ = count;
    reached_.wait(lock, [&] { return count_ >= count; });
  }

 private:
  std::mutex mutex_;
  std::condition_variable reached_;
  std::int64_t count_ = 0;
  std::int64_t awaited_ = -1;
};

class CountingListener : public Velmora::Object,
                         public virtual Velmora::ExternalModuleListenerInterface {
 public:
  explicit CountingListener(std::shared_ptr<Counter> done) : done_(std::move(done)) {}
  void OnRegistered() override {}
  void Hear(const std::shared_ptr<Event>& event) override {
    if (event->GetType() == kType && ++heard_ % kEventsPerRound == 0) done_->Add();
  }
  void OnUnregistered() override {}

 private:
  const std::shared_ptr<Counter> done_;
  std::int64_t heard_ = 0;
};

// One module with as many listeners as asked for: one for the type, the others wildcards.
class ListeningModule : public Velmora::Object, public virtual Velmora::ExternalModuleInterface {
 public:
  ListeningModule(std::int64_t listeners, std::shared_ptr<Counter> done)
      : listeners_(listeners), done_(std::move(done)) {}
  std::string GetModuleName() override { return "benchmark"; }
  std::string GetModuleVersion() override { return "1"; }
  void OnRegister(
      const std::shared_ptr<Velmora::ExternalModuleServicesInterface>& services) override {
    services->RegisterListener(MakeListener(), kType, "request");
    for (std::int64_t more = 1; more < listeners_; ++more) {
      services->RegisterWildcardListener(MakeListener());
    }
  }
  void OnUnexpectedError(Velmora::SdkError& /*error*/) override {}
  void OnUnregister() override {}

 private:
  std::shared_ptr<CountingListener> MakeListener() const {
    return std::make_shared<CountingListener>(done_);
  }

  const std::int64_t listeners_;
  const std::shared_ptr<Counter> done_;
};

void HubDispatch(benchmark::State& state) {
  const std::int64_t listeners = state.range(0);
  const auto done = std::make_shared<Counter>();
  const auto hub = EventHub::Create(Velmora::CreateNativePlatformServices());
  hub->Start();
  hub->RegisterModule(std::make_shared<ListeningModule>(listeners, done));
  const auto registered = std::make_shared<Counter>();
  hub->PostAndFollow(std::make_shared<Event>("ready", "benchmark", "ready"),
                     [registered] { registered->Add(); });
  registered->WaitFor(1);
  const auto event = std::make_shared<Event>("tick", kType, "request");
  std::int64_t rounds = 0;
  for (auto _ : state) {
    for (std::int64_t sent = 0; sent < kEventsPerRound; ++sent) hub->Post(event);
    ++rounds;
    done->WaitFor(rounds * listeners);
  }
  state.SetItemsProcessed(rounds * kEventsPerRound);
  hub->Dispose(std::chrono::seconds(5));
}
BENCHMARK(HubDispatch)->ArgName("listeners")->Arg(1)->Arg(100)->Iterations(5)->UseRealTime();

}  // namespace
