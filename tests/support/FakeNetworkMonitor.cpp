#include "support/FakeNetworkMonitor.h"

#include <utility>

namespace {

struct FakeMonitor {
  GObject parent;
  TestSupport::NetworkCondition condition;
};

struct FakeMonitorClass {
  GObjectClass parent;
};

enum Property : guint { kAvailable = 1, kMetered, kConnectivity };

void GetProperty(GObject* object, guint id, GValue* value, GParamSpec* property) {
  const auto& condition = reinterpret_cast<FakeMonitor*>(object)->condition;
  switch (id) {
    case kAvailable:
      return g_value_set_boolean(value, condition.isAvailable ? TRUE : FALSE);
    case kMetered:
      return g_value_set_boolean(value, FALSE);
    case kConnectivity:
      return g_value_set_enum(value, condition.connectivity);
    default:
      G_OBJECT_WARN_INVALID_PROPERTY_ID(object, id, property);
  }
}

void InitialiseClass(gpointer type, gpointer /*data*/) {
  auto* objectClass = static_cast<GObjectClass*>(type);
  objectClass->get_property = &GetProperty;
  g_object_class_override_property(objectClass, kAvailable, "network-available");
  g_object_class_override_property(objectClass, kMetered, "network-metered");
  g_object_class_override_property(objectClass, kConnectivity, "connectivity");
}

gboolean Initialise(GInitable* /*monitor*/, GCancellable* /*cancellable*/, GError** /*error*/) {
  return TRUE;
}

void InitialiseInitable(gpointer interface, gpointer /*data*/) {
  static_cast<GInitableIface*>(interface)->init = &Initialise;
}

void InitialiseMonitor(gpointer /*interface*/, gpointer /*data*/) {}

GType RegisterType() {
  const GTypeInfo info = {.class_size = sizeof(FakeMonitorClass),
                          .base_init = nullptr,
                          .base_finalize = nullptr,
                          .class_init = &InitialiseClass,
                          .class_finalize = nullptr,
                          .class_data = nullptr,
                          .instance_size = sizeof(FakeMonitor),
                          .n_preallocs = 0,
                          .instance_init = nullptr,
                          .value_table = nullptr};
  const GType type = g_type_register_static(G_TYPE_OBJECT, "QEXFakeNetworkMonitor", &info,
                                            static_cast<GTypeFlags>(0));
  const GInterfaceInfo initable = {&InitialiseInitable, nullptr, nullptr};
  g_type_add_interface_static(type, G_TYPE_INITABLE, &initable);
  const GInterfaceInfo monitor = {&InitialiseMonitor, nullptr, nullptr};
  g_type_add_interface_static(type, G_TYPE_NETWORK_MONITOR, &monitor);
  return type;
}

FakeMonitor* Fake(GNetworkMonitor* monitor) { return reinterpret_cast<FakeMonitor*>(monitor); }

}  // namespace

namespace TestSupport {

Platform::GObjectPointer<GNetworkMonitor> NewFakeNetworkMonitor(const NetworkCondition& condition) {
  static const GType type = RegisterType();
  Platform::GObjectPointer<GNetworkMonitor> monitor(
      static_cast<GNetworkMonitor*>(g_object_new(type, nullptr)));
  Fake(monitor.get())->condition = condition;
  return monitor;
}

void ChangeNetwork(GNetworkMonitor* monitor, const NetworkCondition& condition) {
  const NetworkCondition former = std::exchange(Fake(monitor)->condition, condition);
  if (former.connectivity != condition.connectivity) {
    g_object_notify(G_OBJECT(monitor), "connectivity");
  }
  if (former.isAvailable != condition.isAvailable) {
    g_object_notify(G_OBJECT(monitor), "network-available");
    g_signal_emit_by_name(monitor, "network-changed", condition.isAvailable ? TRUE : FALSE);
  }
}

}  // namespace TestSupport
