#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>

#include <gio/gio.h>

#include "QEXCore_iOS/Platform/Value.h"
#include "platform/linux/DesktopNotification.h"
#include "platform/linux/GlibPointers.h"

namespace Platform {

// Speaks to the desktop's notification service. Belongs to one thread, on which the context that
// was the thread's default when it connected is run; its calls wait for answers until the
// cancellable fires.
class NotificationServiceClient {
 public:
  using Activated = std::function<void(const Value& userInfo)>;

  // An empty address is the session bus. `activated` is called when a notification is clicked.
  NotificationServiceClient(std::string busAddress, GCancellable* cancellable, Activated activated);
  ~NotificationServiceClient();
  NotificationServiceClient(const NotificationServiceClient&) = delete;
  NotificationServiceClient& operator=(const NotificationServiceClient&) = delete;

  // True when there is a bus at the address, or seems to be one. Safe from any thread.
  static bool HasBus(const std::string& busAddress);

  // Connects to the bus unless that has been done. False when it cannot.
  bool Connect();

  // Shows the notification, in the place of one of its key that is shown. Gives what went wrong;
  // nothing when nothing did.
  std::string Show(const DesktopNotification& notification, const std::string& applicationName);

 private:
  struct Shown {
    std::string key;
    Value userInfo;
  };

  void Disconnect();
  std::uint32_t IdOf(const std::string& key) const;
  std::string BodyFor(const std::string& text);
  GVariantPointer Call(const char* method, GVariant* arguments, const char* replyType,
                       std::string* failure);
  void Subscribe(const char* signal);
  static void OnSignal(GDBusConnection* connection, const char* sender, const char* path,
                       const char* interface, const char* signal, GVariant* arguments,
                       gpointer self) noexcept;
  void OnActionInvoked(std::uint32_t id);

  const std::string busAddress_;
  GCancellable* const cancellable_;
  const Activated activated_;
  GObjectPointer<GDBusConnection> connection_;
  bool readsMarkup_ = false;      // the service takes the body for markup
  std::map<guint, Shown> shown_;  // by the service's numbers
};

}  // namespace Platform
