#include "support/FakeBusService.h"

#include <memory>
#include <stdexcept>
#include <utility>

namespace TestSupport {
namespace {

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

}  // namespace

FakeBusService::FakeBusService(const std::string& busAddress, const Place& place, Answer answer)
    : place_(place), answer_(std::move(answer)), context_(g_main_context_new()) {
  std::promise<std::string> failure;
  thread_ = std::thread([&] { Run(busAddress, failure); });
  const std::string text = failure.get_future().get();
  if (text.empty()) return;
  thread_.join();
  throw std::runtime_error(text);
}

FakeBusService::~FakeBusService() {
  stop_ = true;
  g_main_context_wakeup(context_.get());
  thread_.join();
}

void FakeBusService::Emit(const char* signal, GVariant* arguments) const {
  g_dbus_connection_emit_signal(connection_.get(), nullptr, place_.path, place_.interface, signal,
                                arguments, nullptr);
}

void FakeBusService::Run(const std::string& busAddress, std::promise<std::string>& failure) {
  const Platform::ThreadDefaultContext threadDefault(context_.get());
  connection_ = Connect(busAddress);
  if (!connection_) return failure.set_value("the fake service cannot reach the bus");

  const std::unique_ptr<GDBusNodeInfo, UnrefNodeInfo> node(
      g_dbus_node_info_new_for_xml(place_.introspection, nullptr));
  const GDBusInterfaceVTable calls = {&FakeBusService::OnCall, nullptr, nullptr, {}};
  const guint registration = g_dbus_connection_register_object(
      connection_.get(), place_.path, node->interfaces[0], &calls, this, nullptr, nullptr);
  if (registration == 0 || !TakeName()) {
    return failure.set_value("the fake service cannot be offered");
  }

  failure.set_value("");
  while (!stop_) g_main_context_iteration(context_.get(), TRUE);
  g_dbus_connection_unregister_object(connection_.get(), registration);
  g_dbus_connection_close_sync(connection_.get(), nullptr, nullptr);
}

bool FakeBusService::TakeName() const {
  const Platform::GVariantPointer reply(g_dbus_connection_call_sync(
      connection_.get(), "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
      "RequestName", g_variant_new("(su)", place_.name, 0U), G_VARIANT_TYPE("(u)"),
      G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr));
  return reply != nullptr;
}

void FakeBusService::OnCall(GDBusConnection* /*connection*/, const char* /*sender*/,
                            const char* /*path*/, const char* /*interface*/, const char* method,
                            GVariant* arguments, GDBusMethodInvocation* invocation, gpointer self) {
  static_cast<const FakeBusService*>(self)->answer_(method, arguments, invocation);
}

}  // namespace TestSupport
