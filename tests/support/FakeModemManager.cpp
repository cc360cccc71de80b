#include "support/FakeModemManager.h"

#include <stdexcept>
#include <utility>

namespace TestSupport {
namespace {

constexpr const char* kName = "org.freedesktop.ModemManager1";
constexpr const char* kPath = "/org/freedesktop/ModemManager1";

// The answer's type is left open, so that a test can give a wrong one.
constexpr const char* kIntrospection =
    "<node><interface name='org.freedesktop.DBus.ObjectManager'>"
    "<method name='GetManagedObjects'/>"
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

}  // namespace

FakeModemManager::FakeModemManager(const std::string& busAddress, const std::string& reply,
                                   Manner manner)
    : reply_(reply), manner_(manner), context_(g_main_context_new()) {
  std::promise<std::string> failure;
  thread_ = std::thread([&] { Run(busAddress, failure); });
  const std::string text = failure.get_future().get();
  if (text.empty()) return;
  thread_.join();
  throw std::runtime_error(text);
}

FakeModemManager::~FakeModemManager() {
  stop_ = true;
  g_main_context_wakeup(context_.get());
  thread_.join();
}

std::string FakeModemManager::NoModem() { return "(@a{oa{sa{sv}}} {},)"; }

std::string FakeModemManager::OneModem(const std::string& properties3gpp) {
  return "({objectpath '/org/freedesktop/ModemManager1/Modem/0': "
         "{'org.freedesktop.ModemManager1.Modem': @a{sv} {}, "
         "'org.freedesktop.ModemManager1.Modem.Modem3gpp': @a{sv} " +
         properties3gpp + "}},)";
}

std::string FakeModemManager::OneModemWithout3gpp() {
  return "({objectpath '/org/freedesktop/ModemManager1/Modem/0': "
         "{'org.freedesktop.ModemManager1.Modem': @a{sv} {}}},)";
}

void FakeModemManager::Run(const std::string& busAddress, std::promise<std::string>& failure) {
  const Platform::ThreadDefaultContext threadDefault(context_.get());
  const auto connection = Connect(busAddress);
  if (!connection) return failure.set_value("the fake modem service cannot reach the bus");

  const std::unique_ptr<GDBusNodeInfo, UnrefNodeInfo> node(
      g_dbus_node_info_new_for_xml(kIntrospection, nullptr));
  const GDBusInterfaceVTable calls = {&FakeModemManager::OnCall, nullptr, nullptr, {}};
  const guint registration = g_dbus_connection_register_object(
      connection.get(), kPath, node->interfaces[0], &calls, this, nullptr, nullptr);
  if (registration == 0 || !TakeName(connection.get())) {
    return failure.set_value("the fake modem service cannot be offered");
  }

  failure.set_value("");
  while (!stop_) g_main_context_iteration(context_.get(), TRUE);
  g_dbus_connection_unregister_object(connection.get(), registration);
  g_dbus_connection_close_sync(connection.get(), nullptr, nullptr);
}

void FakeModemManager::OnCall(GDBusConnection* /*connection*/, const char* /*sender*/,
                              const char* /*path*/, const char* /*interface*/,
                              const char* /*method*/, GVariant* /*arguments*/,
                              GDBusMethodInvocation* invocation, gpointer self) {
  const auto& manager = *static_cast<FakeModemManager*>(self);
  if (manager.manner_ == Manner::StaysSilent) return g_object_unref(invocation);

  // A message of its own, because the checked way to answer insists on the declared type.
  const Platform::GObjectPointer<GDBusMessage> answer(
      g_dbus_message_new_method_reply(g_dbus_method_invocation_get_message(invocation)));
  g_dbus_message_set_body(
      answer.get(), g_variant_parse(nullptr, manager.reply_.c_str(), nullptr, nullptr, nullptr));
  g_dbus_connection_send_message(g_dbus_method_invocation_get_connection(invocation), answer.get(),
                                 G_DBUS_SEND_MESSAGE_FLAGS_NONE, nullptr, nullptr);
  g_object_unref(invocation);
}

}  // namespace TestSupport
