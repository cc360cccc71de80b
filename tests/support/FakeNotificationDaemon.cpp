#include "support/FakeNotificationDaemon.h"

#include <memory>
#include <stdexcept>
#include <utility>

namespace TestSupport {
namespace {

constexpr const char* kName = "org.freedesktop.Notifications";
constexpr const char* kPath = "/org/freedesktop/Notifications";

constexpr const char* kIntrospection =
    "<node><interface name='org.freedesktop.Notifications'>"
    "<method name='GetCapabilities'><arg type='as' direction='out'/></method>"
    "<method name='Notify'>"
    "<arg type='s' direction='in'/><arg type='u' direction='in'/><arg type='s' direction='in'/>"
    "<arg type='s' direction='in'/><arg type='s' direction='in'/><arg type='as' direction='in'/>"
    "<arg type='a{sv}' direction='in'/><arg type='i' direction='in'/>"
    "<arg type='u' direction='out'/>"
    "</method>"
    "</interface></node>";

struct UnrefNodeInfo {
  void operator()(GDBusNodeInfo* info) const { g_dbus_node_info_unref(info); }
};

Platform::GObjectPointer<GDBusConnection> Connect(const std::string& address) {
  constexpr auto kFlags =
      static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                        G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
  return Platform::GObjectPointer<GDBusConnection>(
      g_dbus_connection_new_for_address_sync(address.c_str(), kFlags, nullptr, nullptr, nullptr));
}

bool TakeName(GDBusConnection* connection) {
  const Platform::GVariantPointer reply(g_dbus_connection_call_sync(
      connection, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
      "RequestName", g_variant_new("(su)", kName, 0U), G_VARIANT_TYPE("(u)"),
      G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr));
  return reply != nullptr;
}

std::string TextHint(GVariant* hints, const char* name) {
  const char* text = "";
  g_variant_lookup(hints, name, "&s", &text);
  return text;
}

}  // namespace

FakeNotificationDaemon::FakeNotificationDaemon(const std::string& busAddress, Manner manner,
                                               bool readsMarkup)
    : manner_(manner), readsMarkup_(readsMarkup), context_(g_main_context_new()) {
  std::promise<std::string> failure;
  thread_ = std::thread([&] { Run(busAddress, failure); });
  const std::string text = failure.get_future().get();
  if (text.empty()) return;
  thread_.join();
  throw std::runtime_error(text);
}

FakeNotificationDaemon::~FakeNotificationDaemon() {
  stop_ = true;
  g_main_context_wakeup(context_.get());
  thread_.join();
}

void FakeNotificationDaemon::Invoke(std::uint32_t id, const std::string& action) {
  Emit("ActionInvoked", g_variant_new("(us)", id, action.c_str()));
}

void FakeNotificationDaemon::Close(std::uint32_t id) {
  Emit("NotificationClosed", g_variant_new("(uu)", id, 2U));
}

void FakeNotificationDaemon::Run(const std::string& busAddress,
                                 std::promise<std::string>& failure) {
  const Platform::ThreadDefaultContext threadDefault(context_.get());
  connection_ = Connect(busAddress);
  if (!connection_) return failure.set_value("the fake daemon cannot reach the bus");

  const std::unique_ptr<GDBusNodeInfo, UnrefNodeInfo> node(
      g_dbus_node_info_new_for_xml(kIntrospection, nullptr));
  const GDBusInterfaceVTable calls = {&FakeNotificationDaemon::OnCall, nullptr, nullptr, {}};
  const guint registration = g_dbus_connection_register_object(
      connection_.get(), kPath, node->interfaces[0], &calls, this, nullptr, nullptr);
  if (registration == 0 || !TakeName(connection_.get())) {
    return failure.set_value("the fake daemon cannot be offered");
  }

  failure.set_value("");
  while (!stop_) g_main_context_iteration(context_.get(), TRUE);
  g_dbus_connection_unregister_object(connection_.get(), registration);
  g_dbus_connection_close_sync(connection_.get(), nullptr, nullptr);
}

void FakeNotificationDaemon::Emit(const char* signal, GVariant* arguments) {
  g_dbus_connection_emit_signal(connection_.get(), nullptr, kPath, kName, signal, arguments,
                                nullptr);
}

void FakeNotificationDaemon::OnNotify(GVariant* arguments, GDBusMethodInvocation* invocation) {
  ++timesAsked_;
  if (manner_ == Manner::StaysSilent) return g_object_unref(invocation);
  if (manner_ == Manner::Refuses) {
    return g_dbus_method_invocation_return_dbus_error(invocation, "org.example.Refused", "refused");
  }
  const char* application = nullptr;
  const char* summary = nullptr;
  const char* body = nullptr;
  GVariant* hintsGiven = nullptr;
  guint replaces = 0;
  g_variant_get(arguments, "(&su&s&s&s@as@a{sv}i)", &application, &replaces, nullptr, &summary,
                &body, nullptr, &hintsGiven, nullptr);
  const Platform::GVariantPointer hints(hintsGiven);
  gboolean isSilent = FALSE;
  g_variant_lookup(hints.get(), "suppress-sound", "b", &isSilent);
  const std::uint32_t id = replaces != 0 ? replaces : ++lastId_;
  shown_.With([&](auto& shown) {
    shown.push_back({.id = id,
                     .replaces = replaces,
                     .application = application,
                     .summary = summary,
                     .body = body,
                     .sound = TextHint(hints.get(), "sound-name"),
                     .isSilent = isSilent != FALSE,
                     .category = TextHint(hints.get(), "category"),
                     .desktopEntry = TextHint(hints.get(), "desktop-entry")});
  });
  g_dbus_method_invocation_return_value(invocation, g_variant_new("(u)", id));
}

void FakeNotificationDaemon::OnCall(GDBusConnection* /*connection*/, const char* /*sender*/,
                                    const char* /*path*/, const char* /*interface*/,
                                    const char* method, GVariant* arguments,
                                    GDBusMethodInvocation* invocation, gpointer self) {
  auto& daemon = *static_cast<FakeNotificationDaemon*>(self);
  if (std::string(method) == "Notify") return daemon.OnNotify(arguments, invocation);
  const char* markup[] = {"actions", "body", "body-markup", nullptr};
  const char* plain[] = {"actions", "body", nullptr};
  g_dbus_method_invocation_return_value(
      invocation,
      g_variant_new("(@as)", g_variant_new_strv(daemon.readsMarkup_ ? markup : plain, -1)));
}

}  // namespace TestSupport
