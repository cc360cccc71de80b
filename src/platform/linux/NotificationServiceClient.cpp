#include "platform/linux/NotificationServiceClient.h"

#include <cstdlib>
#include <cstring>
#include <utility>

#include <sys/stat.h>

#include "platform/linux/UserDirectories.h"

namespace Platform {
namespace {

constexpr const char* kService = "org.freedesktop.Notifications";
constexpr const char* kPath = "/org/freedesktop/Notifications";
constexpr const char* kDefaultAction = "default";
constexpr const char* kDefaultSound = "message-new-instant";
constexpr int kPatienceInMilliseconds = 10'000;
constexpr std::size_t kMostShown = 1000;

// The session bus that is there; GLib would start one where there is none. Empty when none is.
std::string SessionBusAddress() {
  const char* address = std::getenv("DBUS_SESSION_BUS_ADDRESS");
  if (address != nullptr && address[0] != '\0') return address;
  const char* folder = std::getenv("XDG_RUNTIME_DIR");
  if (folder == nullptr || folder[0] != '/') return {};
  const std::string socket = std::string(folder) + "/bus";
  struct stat status = {};
  const bool isSocket = ::stat(socket.c_str(), &status) == 0 && S_ISSOCK(status.st_mode);
  return isSocket ? "unix:path=" + socket : "";
}

std::string AddressOf(const std::string& busAddress) {
  return busAddress.empty() ? SessionBusAddress() : busAddress;
}

// What the service shall do beyond showing the text; floating.
GVariant* HintsFor(const DesktopNotification& notification) {
  GVariantBuilder hints;
  g_variant_builder_init(&hints, G_VARIANT_TYPE("a{sv}"));
  g_variant_builder_add(&hints, "{sv}", "desktop-entry",
                        g_variant_new_string(ProgramName().c_str()));
  if (notification.isSilent) {
    g_variant_builder_add(&hints, "{sv}", "suppress-sound", g_variant_new_boolean(TRUE));
  } else {
    const std::string& name = notification.sound;
    g_variant_builder_add(&hints, "{sv}", "sound-name",
                          g_variant_new_string(name.empty() ? kDefaultSound : name.c_str()));
  }
  if (!notification.category.empty()) {
    g_variant_builder_add(&hints, "{sv}", "category",
                          g_variant_new_string(notification.category.c_str()));
  }
  return g_variant_builder_end(&hints);
}

bool HasCapability(GVariant* reply, const char* wanted) {
  const GVariantPointer names(g_variant_get_child_value(reply, 0));
  for (gsize i = 0; i < g_variant_n_children(names.get()); ++i) {
    const GVariantPointer name(g_variant_get_child_value(names.get(), i));
    if (std::strcmp(g_variant_get_string(name.get(), nullptr), wanted) == 0) return true;
  }
  return false;
}

}  // namespace

NotificationServiceClient::NotificationServiceClient(std::string busAddress,
                                                     GCancellable* cancellable, Activated activated)
    : busAddress_(std::move(busAddress)),
      cancellable_(cancellable),
      activated_(std::move(activated)) {}

NotificationServiceClient::~NotificationServiceClient() { Disconnect(); }

bool NotificationServiceClient::HasBus(const std::string& busAddress) {
  return !AddressOf(busAddress).empty();
}

bool NotificationServiceClient::Connect() {
  if (connection_ && g_dbus_connection_is_closed(connection_.get()) == FALSE) return true;
  Disconnect();
  const std::string address = AddressOf(busAddress_);
  if (address.empty()) return false;
  constexpr auto kFlags =
      static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                        G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
  connection_.reset(g_dbus_connection_new_for_address_sync(address.c_str(), kFlags, nullptr,
                                                           cancellable_, nullptr));
  if (!connection_) return false;
  Subscribe("ActionInvoked");
  Subscribe("NotificationClosed");
  const GVariantPointer capabilities = Call("GetCapabilities", nullptr, "(as)", nullptr);
  readsMarkup_ = capabilities && HasCapability(capabilities.get(), "body-markup");
  return true;
}

std::string NotificationServiceClient::Show(const DesktopNotification& notification,
                                            const std::string& applicationName) {
  const char* actions[] = {kDefaultAction, "", nullptr};
  std::string failure;
  const GVariantPointer reply =
      Call("Notify",
           g_variant_new("(susss@as@a{sv}i)", applicationName.c_str(), IdOf(notification.key), "",
                         applicationName.c_str(), BodyFor(notification.body).c_str(),
                         g_variant_new_strv(actions, -1), HintsFor(notification), -1),
           "(u)", &failure);
  if (!reply) return failure;
  guint id = 0;
  g_variant_get(reply.get(), "(u)", &id);
  std::erase_if(shown_, [&](const auto& each) { return each.second.key == notification.key; });
  // A service that never tells of closing shall not fill the memory.
  if (shown_.size() >= kMostShown) shown_.erase(shown_.begin());
  shown_[id] = {.key = notification.key, .userInfo = notification.userInfo};
  return {};
}

void NotificationServiceClient::Disconnect() {
  shown_.clear();
  if (!connection_) return;
  g_dbus_connection_close_sync(connection_.get(), nullptr, nullptr);
  connection_.reset();
}

// 0, which stands for a new one, when none of that key is shown.
std::uint32_t NotificationServiceClient::IdOf(const std::string& key) const {
  for (const auto& [id, shown] : shown_) {
    if (shown.key == key) return id;
  }
  return 0;
}

std::string NotificationServiceClient::BodyFor(const std::string& text) {
  if (!readsMarkup_) return text;
  const GCharPointer escaped(g_markup_escape_text(text.c_str(), -1));
  return escaped.get();
}

// Null when the service does not answer in time, or not as it should.
GVariantPointer NotificationServiceClient::Call(const char* method, GVariant* arguments,
                                                const char* replyType, std::string* failure) {
  GError* error = nullptr;
  GVariantPointer reply(g_dbus_connection_call_sync(
      connection_.get(), kService, kPath, kService, method, arguments, G_VARIANT_TYPE(replyType),
      G_DBUS_CALL_FLAGS_NONE, kPatienceInMilliseconds, cancellable_, &error));
  if (error != nullptr) {
    if (failure != nullptr) *failure = error->message;
    g_error_free(error);
  }
  return reply;
}

void NotificationServiceClient::Subscribe(const char* signal) {
  g_dbus_connection_signal_subscribe(connection_.get(), kService, kService, signal, kPath, nullptr,
                                     G_DBUS_SIGNAL_FLAGS_NONE, &NotificationServiceClient::OnSignal,
                                     this, nullptr);
}

void NotificationServiceClient::OnSignal(GDBusConnection* /*connection*/, const char* /*sender*/,
                                         const char* /*path*/, const char* /*interface*/,
                                         const char* signal, GVariant* arguments,
                                         gpointer self) noexcept {
  auto& client = *static_cast<NotificationServiceClient*>(self);
  guint number = 0;
  if (std::strcmp(signal, "NotificationClosed") == 0) {
    if (!g_variant_is_of_type(arguments, G_VARIANT_TYPE("(uu)"))) return;
    g_variant_get(arguments, "(uu)", &number, nullptr);
    client.shown_.erase(number);
  } else if (g_variant_is_of_type(arguments, G_VARIANT_TYPE("(us)"))) {
    const char* action = nullptr;
    g_variant_get(arguments, "(u&s)", &number, &action);
    if (std::strcmp(action, kDefaultAction) == 0) client.OnActionInvoked(number);
  }
}

void NotificationServiceClient::OnActionInvoked(std::uint32_t id) {
  const auto found = shown_.find(id);
  if (found == shown_.end() || !activated_) return;
  const Value userInfo = found->second.userInfo;
  activated_(userInfo);
}

}  // namespace Platform
