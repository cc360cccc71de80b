#include "platform/linux/LinuxTelephony.h"

#include <map>
#include <optional>
#include <utility>

#include <gio/gio.h>

#include "platform/linux/GlibPointers.h"
#include "platform/linux/PlainText.h"

namespace Platform {
namespace {

using Connection = GObjectPointer<GDBusConnection>;

constexpr std::chrono::milliseconds kPatience{1000};
constexpr const char* kService = "org.freedesktop.ModemManager1";
constexpr const char* kServicePath = "/org/freedesktop/ModemManager1";
constexpr const char* kObjectManager = "org.freedesktop.DBus.ObjectManager";
constexpr const char* kModem = "org.freedesktop.ModemManager1.Modem";
constexpr const char* kModem3gpp = "org.freedesktop.ModemManager1.Modem.Modem3gpp";
constexpr const char* kObjectsType = "(a{oa{sa{sv}}})";

// What is known of one modem.
struct ModemInfo {
  bool is3gpp = false;
  std::string operatorName;
};

class ModemNetworkInfo final : public TelephonyNetworkInfo {
 public:
  explicit ModemNetworkInfo(ModemInfo modem) : modem_(std::move(modem)) {}

  bool KnowsSubscriberProvider() const override { return modem_.is3gpp; }

  std::optional<std::string> CarrierName() const override {
    if (modem_.operatorName.empty()) return std::nullopt;
    return modem_.operatorName;
  }

 private:
  const ModemInfo modem_;
};

// Runs asynchronous operations one after another on the calling thread, in a context of their own,
// and cancels them when their common time is up. (The synchronous forms know no common time limit,
// and with some of them none at all.)
class BoundedOperations {
 public:
  explicit BoundedOperations(std::chrono::milliseconds patience)
      : context_(g_main_context_new()),
        threadDefault_(context_.get()),
        cancellable_(g_cancellable_new()),
        alarm_(g_timeout_source_new(static_cast<guint>(patience.count()))) {
    g_source_set_callback(alarm_, &BoundedOperations::OnAlarm, cancellable_.get(), nullptr);
    g_source_attach(alarm_, context_.get());
  }

  ~BoundedOperations() {
    g_source_destroy(alarm_);
    g_source_unref(alarm_);
  }

  BoundedOperations(const BoundedOperations&) = delete;
  BoundedOperations& operator=(const BoundedOperations&) = delete;

  // Begins an operation with start(cancellable, callback, callbackData) and waits for its result.
  template <class Start>
  GObjectPointer<GAsyncResult> Run(Start&& start) {
    GObjectPointer<GAsyncResult> result;
    start(cancellable_.get(), &BoundedOperations::OnReady, &result);
    while (!result) g_main_context_iteration(context_.get(), TRUE);
    return result;
  }

 private:
  static gboolean OnAlarm(gpointer cancellable) noexcept {
    g_cancellable_cancel(static_cast<GCancellable*>(cancellable));
    return G_SOURCE_REMOVE;
  }

  static void OnReady(GObject* /*source*/, GAsyncResult* result, gpointer destination) noexcept {
    g_object_ref(result);
    static_cast<GObjectPointer<GAsyncResult>*>(destination)->reset(result);
  }

  const GMainContextPointer context_;
  const ThreadDefaultContext threadDefault_;
  const GObjectPointer<GCancellable> cancellable_;
  GSource* const alarm_;
};

GCharPointer SystemBusAddress() {
  return GCharPointer(g_dbus_address_get_for_bus_sync(G_BUS_TYPE_SYSTEM, nullptr, nullptr));
}

// Null when there is no bus at the address, or none that answers.
Connection Connect(const std::string& address, BoundedOperations& operations) {
  const auto result =
      operations.Run([&](GCancellable* cancellable, GAsyncReadyCallback callback, gpointer data) {
        constexpr auto kFlags =
            static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                              G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
        g_dbus_connection_new_for_address(address.c_str(), kFlags, nullptr, cancellable, callback,
                                          data);
      });
  return Connection(g_dbus_connection_new_for_address_finish(result.get(), nullptr));
}

// Every object of the service with its interfaces and their properties; null when the service does
// not run or does not answer.
GVariantPointer ManagedObjects(GDBusConnection* connection, BoundedOperations& operations) {
  const auto result = operations.Run([&](GCancellable* cancellable, GAsyncReadyCallback callback,
                                         gpointer data) {
    g_dbus_connection_call(connection, kService, kServicePath, kObjectManager, "GetManagedObjects",
                           nullptr, G_VARIANT_TYPE(kObjectsType), G_DBUS_CALL_FLAGS_NO_AUTO_START,
                           G_MAXINT, cancellable, callback, data);
  });
  return GVariantPointer(g_dbus_connection_call_finish(connection, result.get(), nullptr));
}

// Null when `dictionary` has no such key, or a value of another type under it.
GVariantPointer Lookup(GVariant* dictionary, const char* key, const char* type) {
  return GVariantPointer(g_variant_lookup_value(dictionary, key, G_VARIANT_TYPE(type)));
}

// Nothing when the object is no modem.
std::optional<ModemInfo> ModemOf(GVariant* interfaces) {
  if (!Lookup(interfaces, kModem, "a{sv}")) return std::nullopt;
  ModemInfo modem;
  const GVariantPointer properties = Lookup(interfaces, kModem3gpp, "a{sv}");
  if (!properties) return modem;
  modem.is3gpp = true;
  const GVariantPointer name = Lookup(properties.get(), "OperatorName", "s");
  // The network chose the name.
  if (name) {
    modem.operatorName = PlainText(g_variant_get_string(name.get(), nullptr)).value_or("");
  }
  return modem;
}

// The modem that was there first: modems are numbered as they appear, ".../Modem/0" before
// ".../Modem/10".
std::optional<ModemInfo> FirstModem(GVariant* reply) {
  std::map<std::pair<std::size_t, std::string>, ModemInfo> modems;  // by length and text of path
  const GVariantPointer objects(g_variant_get_child_value(reply, 0));
  for (gsize i = 0; i < g_variant_n_children(objects.get()); ++i) {
    const GVariantPointer entry(g_variant_get_child_value(objects.get(), i));
    const GVariantPointer pathText(g_variant_get_child_value(entry.get(), 0));
    const GVariantPointer interfaces(g_variant_get_child_value(entry.get(), 1));
    const std::string path = g_variant_get_string(pathText.get(), nullptr);
    if (auto modem = ModemOf(interfaces.get())) modems[{path.size(), path}] = *modem;
  }
  if (modems.empty()) return std::nullopt;
  return modems.begin()->second;
}

std::optional<ModemInfo> AskForModem(const std::string& address,
                                     std::chrono::milliseconds patience) {
  BoundedOperations operations(patience);
  const Connection connection = Connect(address, operations);
  if (!connection) return std::nullopt;
  const GVariantPointer reply = ManagedObjects(connection.get(), operations);
  return reply ? FirstModem(reply.get()) : std::nullopt;
}

}  // namespace

LinuxTelephony::LinuxTelephony() : LinuxTelephony("", kPatience) {}

LinuxTelephony::LinuxTelephony(std::string busAddress, std::chrono::milliseconds patience)
    : busAddress_(std::move(busAddress)), patience_(patience) {}

std::unique_ptr<TelephonyNetworkInfo> LinuxTelephony::CreateNetworkInfo() const {
  std::string address = busAddress_;
  if (address.empty()) {
    const GCharPointer systemBus = SystemBusAddress();
    if (!systemBus) return nullptr;
    address = systemBus.get();
  }
  std::optional<ModemInfo> modem = AskForModem(address, patience_);
  if (!modem) return nullptr;
  return std::make_unique<ModemNetworkInfo>(std::move(*modem));
}

}  // namespace Platform
