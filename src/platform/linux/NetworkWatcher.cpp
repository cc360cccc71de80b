#include "platform/linux/NetworkWatcher.h"

#include <utility>

#include <pthread.h>

#include "QEXCore_iOS/Platform/Reachability.h"

namespace Platform {
namespace {

constexpr std::chrono::milliseconds kPatience{250};

GObjectPointer<GNetworkMonitor> TryMake(GIOExtension* extension, GCancellable* cancellable) {
  const GType type = g_io_extension_get_type(extension);
  gpointer monitor = g_type_is_a(type, G_TYPE_INITABLE)
                         ? g_initable_new(type, cancellable, nullptr, nullptr)
                         : g_object_new(type, nullptr);
  return GObjectPointer<GNetworkMonitor>(static_cast<GNetworkMonitor*>(monitor));
}

// The monitor that g_network_monitor_get_default() would share, but one of our own.
GObjectPointer<GNetworkMonitor> MakeBestMonitor(GCancellable* cancellable) {
  // GIO registers its monitors along with all its modules, when one is first needed. Of the public
  // functions that see to that, this is one with no other effect.
  const GObjectPointer<GProxy> noProxy(g_proxy_get_default_for_protocol("none"));

  GIOExtensionPoint* monitors = g_io_extension_point_lookup(G_NETWORK_MONITOR_EXTENSION_POINT_NAME);
  if (monitors == nullptr) return nullptr;
  if (const char* chosen = g_getenv("GIO_USE_NETWORK_MONITOR")) {
    GIOExtension* extension = g_io_extension_point_get_extension_by_name(monitors, chosen);
    auto monitor = extension != nullptr ? TryMake(extension, cancellable) : nullptr;
    if (monitor) return monitor;
  }
  for (GList* each = g_io_extension_point_get_extensions(monitors); each != nullptr;
       each = each->next) {
    auto monitor = TryMake(static_cast<GIOExtension*>(each->data), cancellable);
    if (monitor) return monitor;
  }
  return nullptr;
}

std::uint32_t FlagsOf(GNetworkMonitor* monitor) {
  if (!g_network_monitor_get_network_available(monitor)) return 0;
  switch (g_network_monitor_get_connectivity(monitor)) {
    case G_NETWORK_CONNECTIVITY_LOCAL:
      return 0;
    case G_NETWORK_CONNECTIVITY_PORTAL:
      return kReachabilityFlagReachable | kReachabilityFlagConnectionRequired;
    case G_NETWORK_CONNECTIVITY_LIMITED:  // routes lead out; what lies beyond is not ours to judge
    case G_NETWORK_CONNECTIVITY_FULL:
      return kReachabilityFlagReachable;
  }
  return kReachabilityFlagReachable;
}

}  // namespace

NetworkWatcher::NetworkWatcher() : NetworkWatcher(MakeBestMonitor) {}

NetworkWatcher::NetworkWatcher(MonitorFactory createMonitor)
    : patienceEnds_(std::chrono::steady_clock::now() + kPatience),
      context_(g_main_context_new()),
      cancellable_(g_cancellable_new()),
      thread_([this, create = std::move(createMonitor)] { Run(create); }) {}

NetworkWatcher::~NetworkWatcher() {
  stop_ = true;
  g_cancellable_cancel(cancellable_.get());
  g_main_context_wakeup(context_.get());
  thread_.join();
}

std::optional<std::uint32_t> NetworkWatcher::Flags() {
  std::unique_lock lock(mutex_);
  becameReady_.wait_until(lock, patienceEnds_, [this] { return ready_; });
  return flags_;
}

void NetworkWatcher::Run(const MonitorFactory& createMonitor) {
  ::pthread_setname_np(::pthread_self(), "QEXReachability");
  const ThreadDefaultContext threadDefault(context_.get());
  const GObjectPointer<GNetworkMonitor> monitor = createMonitor(cancellable_.get());
  if (monitor) {
    Follow(monitor.get());
  } else {
    SayReady();
  }
}

void NetworkWatcher::Follow(GNetworkMonitor* monitor) {
  g_signal_connect(monitor, "network-changed", G_CALLBACK(&NetworkWatcher::OnNetworkChanged), this);
  g_signal_connect(monitor, "notify::connectivity",
                   G_CALLBACK(&NetworkWatcher::OnConnectivityChanged), this);
  Publish(monitor);
  SayReady();
  while (!stop_) g_main_context_iteration(context_.get(), TRUE);
  g_signal_handlers_disconnect_by_data(monitor, this);
}

void NetworkWatcher::OnNetworkChanged(GNetworkMonitor* monitor, gboolean /*isAvailable*/,
                                      NetworkWatcher* watcher) noexcept {
  watcher->Publish(monitor);
}

void NetworkWatcher::OnConnectivityChanged(GNetworkMonitor* monitor, GParamSpec* /*property*/,
                                           NetworkWatcher* watcher) noexcept {
  watcher->Publish(monitor);
}

void NetworkWatcher::Publish(GNetworkMonitor* monitor) {
  const std::uint32_t flags = FlagsOf(monitor);
  const std::lock_guard lock(mutex_);
  flags_ = flags;
}

void NetworkWatcher::SayReady() {
  {
    const std::lock_guard lock(mutex_);
    ready_ = true;
  }
  becameReady_.notify_all();
}

}  // namespace Platform
