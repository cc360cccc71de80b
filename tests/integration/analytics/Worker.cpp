// The app of the tests, on the whole library, with a collector of the test's.
//
//   track URL FILE PREFIX   tracks "<PREFIX>-0", "<PREFIX>-1" and so on until it is killed, and
//                           writes the id of each hit to the file once it is acknowledged
//   send URL                ends when no hit waits any more

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <future>
#include <iostream>
#include <memory>
#include <string>

#include <fcntl.h>
#include <unistd.h>

#include "QEXCore_iOS/GetCore.h"
#include "QEXCore_iOS/QEXCore.h"
#include "VelmoraCore/Core.h"
#include "VelmoraCore/EventNames.h"
#include "VelmoraCore/ExternalModuleInterface.h"
#include "VelmoraCore/ExternalModuleListenerInterface.h"
#include "VelmoraCore/Object.h"

namespace {

using namespace std::chrono_literals;
using Velmora::Event;
using Velmora::EventKeys::kHitId;
using Velmora::EventKeys::kQueued;
using Velmora::EventSources::kPrepared;
using Velmora::EventSources::kQuery;
using Velmora::EventTypes::kAnalytics;

// Hears of each hit once it is acknowledged.
class Scribe final : public Velmora::Object,
                     public virtual Velmora::ExternalModuleInterface,
                     public virtual Velmora::ExternalModuleListenerInterface {
 public:
  explicit Scribe(const std::string& path)
      : file_(::open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600)) {}

  std::size_t Count() const { return count_; }

  std::string GetModuleName() override { return "scribe"; }
  std::string GetModuleVersion() override { return "1"; }
  void OnRegister(
      const std::shared_ptr<Velmora::ExternalModuleServicesInterface>& services) override {
    services->RegisterListener(std::dynamic_pointer_cast<Scribe>(SharedPtrToThisObjectInterface()),
                               kAnalytics, kPrepared);
  }
  void OnUnexpectedError(Velmora::SdkError& error) override { std::cerr << error.what() << '\n'; }
  void OnUnregister() override {}

  void OnRegistered() override {}
  void Hear(const std::shared_ptr<Event>& event) override {
    const std::string line = event->GetData()->Get(kHitId)->GetString() + '\n';
    if (::write(file_, line.data(), line.size()) != static_cast<ssize_t>(line.size())) std::abort();
    ++count_;
  }
  void OnUnregistered() override {}

 private:
  const int file_;
  std::atomic<std::size_t> count_{0};
};

void Configure(const std::string& url) {
  QEXCore::setPrivacyStatus(QEXMobilePrivacyStatus::optedIn);
  QEXCore::updateConfiguration({{"analytics.collector", url}, {"analytics.timeout", 1}});
}

void Pause() {
  std::promise<void> never;
  never.get_future().wait_for(1ms);
}

int Track(const std::string& url, const std::string& path, const std::string& prefix) {
  const auto scribe = std::make_shared<Scribe>(path);
  GetCore()->RegisterExternalModule(scribe, nullptr);
  Configure(url);
  for (std::size_t count = 0; true; ++count) {
    QEXCore::trackAction(prefix + "-" + std::to_string(count), {});
    // So that there are single hits and rushes of them.
    constexpr std::size_t kAhead = 8;
    while (count % 4 == 0 && scribe->Count() + kAhead < count) Pause();
  }
}

std::int64_t CountQueued() {
  std::promise<std::int64_t> count;
  GetCore()->DispatchEventWithResponseCallback(
      std::make_shared<Event>("how many?", kAnalytics, kQuery),
      [&](const std::shared_ptr<Event>& response) {
        count.set_value(response->GetData()->Get(kQueued)->GetLong());
      },
      nullptr);
  return count.get_future().get();
}

int Send(const std::string& url) {
  Configure(url);
  while (CountQueued() > 0) Pause();
  return EXIT_SUCCESS;
}

}  // namespace

int main(int argc, char** argv) {
  const std::string work = argc > 2 ? argv[1] : "";
  if (work == "track" && argc == 5) return Track(argv[2], argv[3], argv[4]);
  if (work == "send") return Send(argv[2]);
  std::cerr << "what shall be done?\n";
  return EXIT_FAILURE;
}
