#pragma once

#include <atomic>
#include <functional>
#include <future>
#include <string>
#include <thread>

#include <gio/gio.h>

#include "platform/linux/GlibPointers.h"

namespace TestSupport {

// A service on a bus of the test's choice, from construction to destruction, with a thread of its
// own on which it is called.
class FakeBusService {
 public:
  struct Place {
    const char* name;       // on the bus
    const char* path;       // of its only object
    const char* interface;  // of that object
    const char* introspection;
  };
  // Answers a call of the method, or lets it go.
  using Answer = std::function<void(const std::string& method, GVariant* arguments,
                                    GDBusMethodInvocation* invocation)>;

  // Throws std::runtime_error when the service cannot get onto the bus.
  FakeBusService(const std::string& busAddress, const Place& place, Answer answer);
  ~FakeBusService();
  FakeBusService(const FakeBusService&) = delete;
  FakeBusService& operator=(const FakeBusService&) = delete;

  // Tells everybody on the bus.
  void Emit(const char* signal, GVariant* arguments) const;

 private:
  void Run(const std::string& busAddress, std::promise<std::string>& failure);
  bool TakeName() const;
  static void OnCall(GDBusConnection* connection, const char* sender, const char* path,
                     const char* interface, const char* method, GVariant* arguments,
                     GDBusMethodInvocation* invocation, gpointer self);

  const Place place_;
  const Answer answer_;
  const Platform::GMainContextPointer context_;
  Platform::GObjectPointer<GDBusConnection> connection_;
  std::atomic<bool> stop_{false};
  std::thread thread_;
};

}  // namespace TestSupport
