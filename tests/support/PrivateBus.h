#pragma once

#include <string>

#include <gio/gio.h>

#include "platform/linux/GlibPointers.h"
#include "support/TemporaryDirectory.h"

namespace TestSupport {

// A D-Bus message bus of the test's own, which runs as long as the object lives.
class PrivateBus {
 public:
  // Throws std::runtime_error when dbus-daemon cannot be started.
  PrivateBus();

  // A bus that starts a service of this name, by running `command`, when somebody asks for it.
  PrivateBus(const std::string& startableService, const std::string& command);

  ~PrivateBus();
  PrivateBus(const PrivateBus&) = delete;
  PrivateBus& operator=(const PrivateBus&) = delete;

  const std::string& Address() const { return address_; }

 private:
  void Start();

  TemporaryDirectory folder_;
  Platform::GObjectPointer<GSubprocess> daemon_;
  std::string address_;
};

}  // namespace TestSupport
