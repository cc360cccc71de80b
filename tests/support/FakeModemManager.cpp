#include "support/FakeModemManager.h"

#include "platform/linux/GlibPointers.h"

namespace TestSupport {
namespace {

// The answer's type is left open, so that a test can give a wrong one.
constexpr const char* kIntrospection =
    "<node><interface name='org.freedesktop.DBus.ObjectManager'>"
    "<method name='GetManagedObjects'/>"
    "</interface></node>";

constexpr FakeBusService::Place kPlace = {
    .name = "org.freedesktop.ModemManager1",
    .path = "/org/freedesktop/ModemManager1",
    .interface = "org.freedesktop.DBus.ObjectManager",
    .introspection = kIntrospection,
};

}  // namespace

FakeModemManager::FakeModemManager(const std::string& busAddress, const std::string& reply,
                                   Manner manner)
    : reply_(reply),
      manner_(manner),
      service_(busAddress, kPlace,
               [this](const std::string&, GVariant*, GDBusMethodInvocation* invocation) {
                 Answer(invocation);
               }) {}

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

void FakeModemManager::Answer(GDBusMethodInvocation* invocation) const {
  if (manner_ == Manner::StaysSilent) return g_object_unref(invocation);

  // A message of its own, because the checked way to answer insists on the declared type.
  const Platform::GObjectPointer<GDBusMessage> answer(
      g_dbus_message_new_method_reply(g_dbus_method_invocation_get_message(invocation)));
  g_dbus_message_set_body(answer.get(),
                          g_variant_parse(nullptr, reply_.c_str(), nullptr, nullptr, nullptr));
  g_dbus_connection_send_message(g_dbus_method_invocation_get_connection(invocation), answer.get(),
                                 G_DBUS_SEND_MESSAGE_FLAGS_NONE, nullptr, nullptr);
  g_object_unref(invocation);
}

}  // namespace TestSupport
