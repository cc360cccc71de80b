#pragma once

#include <atomic>
#include <cstdint>
#include <future>
#include <string>
#include <thread>
#include <vector>

#include <gio/gio.h>

#include "platform/linux/GlibPointers.h"
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
  ~FakeNotificationDaemon();
  FakeNotificationDaemon(const FakeNotificationDaemon&) = delete;
  FakeNotificationDaemon& operator=(const FakeNotificationDaemon&) = delete;

  // What it was asked to show, in order.
  std::vector<Shown> AllShown() const { return shown_.Get(); }

  // How often it was asked, whether or not it did.
  int TimesAsked() const { return timesAsked_; }

  // The user clicks the notification, or closes it.
  void Invoke(std::uint32_t id, const std::string& action);
  void Close(std::uint32_t id);

 private:
  void Run(const std::string& busAddress, std::promise<std::string>& failure);
  void Emit(const char* signal, GVariant* arguments);
  void OnNotify(GVariant* arguments, GDBusMethodInvocation* invocation);
  static void OnCall(GDBusConnection* connection, const char* sender, const char* path,
                     const char* interface, const char* method, GVariant* arguments,
                     GDBusMethodInvocation* invocation, gpointer self);

  const Manner manner_;
  const bool readsMarkup_;
  const Platform::GMainContextPointer context_;
  Platform::GObjectPointer<GDBusConnection> connection_;
  Guarded<std::vector<Shown>> shown_;
  std::atomic<int> timesAsked_{0};
  std::uint32_t lastId_ = 0;
  std::atomic<bool> stop_{false};
  std::thread thread_;
};

}  // namespace TestSupport
