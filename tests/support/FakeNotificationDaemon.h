#pragma once

#include <atomic>
#include <cstdint>
#include <string>
#include <vector>

#include <gio/gio.h>

#include "support/FakeBusService.h"
#include "support/Guarded.h"

namespace TestSupport {

// The desktop's notification service, on a bus of the test's choice, from construction to
// destruction.
class FakeNotificationDaemon {
 public:
  struct Shown {
    std::uint32_t id = 0;
    std::uint32_t replaces = 0;
    std::string application;
    std::string summary;
    std::string body;
    std::string sound;  // empty: none is named
    bool isSilent = false;
    std::string category;
    std::string desktopEntry;
  };

  enum class Manner { Shows, Refuses, StaysSilent };

  // Throws std::runtime_error when the service cannot get onto the bus.
  explicit FakeNotificationDaemon(const std::string& busAddress, Manner manner = Manner::Shows,
                                  bool readsMarkup = false);

  // What it was asked to show, in order.
  std::vector<Shown> AllShown() const { return shown_.Get(); }

  // How often it was asked, whether or not it did.
  int TimesAsked() const { return timesAsked_; }

  // The user clicks the notification, or closes it.
  void Invoke(std::uint32_t id, const std::string& action);
  void Close(std::uint32_t id);

 private:
  void Answer(const std::string& method, GVariant* arguments, GDBusMethodInvocation* invocation);
  void OnNotify(GVariant* arguments, GDBusMethodInvocation* invocation);

  const Manner manner_;
  const bool readsMarkup_;
  Guarded<std::vector<Shown>> shown_;
  std::atomic<int> timesAsked_{0};
  std::uint32_t lastId_ = 0;
  const FakeBusService service_;  // last: it is called as long as it lives
};

}  // namespace TestSupport
