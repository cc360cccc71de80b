#include "support/FakeNotificationDaemon.h"

#include "platform/linux/GlibPointers.h"

namespace TestSupport {
namespace {

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

constexpr FakeBusService::Place kPlace = {
    .name = "org.freedesktop.Notifications",
    .path = "/org/freedesktop/Notifications",
    .interface = "org.freedesktop.Notifications",
    .introspection = kIntrospection,
};

std::string TextHint(GVariant* hints, const char* name) {
  const char* text = "";
  g_variant_lookup(hints, name, "&s", &text);
  return text;
}

}  // namespace

FakeNotificationDaemon::FakeNotificationDaemon(const std::string& busAddress, Manner manner,
                                               bool readsMarkup)
    : manner_(manner),
      readsMarkup_(readsMarkup),
      service_(
          busAddress, kPlace,
          [this](const std::string& method, GVariant* arguments,
                 GDBusMethodInvocation* invocation) { Answer(method, arguments, invocation); }) {}

void FakeNotificationDaemon::Invoke(std::uint32_t id, const std::string& action) {
  service_.Emit("ActionInvoked", g_variant_new("(us)", id, action.c_str()));
}

void FakeNotificationDaemon::Close(std::uint32_t id) {
  service_.Emit("NotificationClosed", g_variant_new("(uu)", id, 2U));
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

void FakeNotificationDaemon::Answer(const std::string& method, GVariant* arguments,
                                    GDBusMethodInvocation* invocation) {
  if (method == "Notify") return OnNotify(arguments, invocation);
  const char* markup[] = {"actions", "body", "body-markup", nullptr};
  const char* plain[] = {"actions", "body", nullptr};
  g_dbus_method_invocation_return_value(
      invocation, g_variant_new("(@as)", g_variant_new_strv(readsMarkup_ ? markup : plain, -1)));
}

}  // namespace TestSupport
