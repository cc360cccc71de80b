#include "platform/gtk/Gtk4Screen.h"

namespace Platform {

Gtk4Screen::Gtk4Screen(GdkDisplay* display) : monitors_(Retain(gdk_display_get_monitors(display))) {
  onItemsChanged_ = OnSignal<void(guint, guint, guint)>(
      monitors_.get(), "items-changed", [this](guint, guint, guint) { FollowFirstMonitor(); });
  FollowFirstMonitor();
}

ScreenMetrics Gtk4Screen::MainScreen() const {
  const std::lock_guard lock(mutex_);
  return metrics_;
}

void Gtk4Screen::FollowFirstMonitor() {
  const GObjectPointer<GdkMonitor> monitor(
      static_cast<GdkMonitor*>(g_list_model_get_item(monitors_.get(), 0)));
  onGeometry_ = {};
  onScale_ = {};
  if (!monitor) {
    const std::lock_guard lock(mutex_);
    metrics_ = {};
    return;
  }
  const auto measure = [this, known = monitor.get()](GParamSpec*) { Measure(known); };
  onGeometry_ = OnSignal<void(GParamSpec*)>(monitor.get(), "notify::geometry", measure);
  onScale_ = OnSignal<void(GParamSpec*)>(monitor.get(), "notify::scale-factor", measure);
  Measure(monitor.get());
}

void Gtk4Screen::Measure(GdkMonitor* monitor) {
  GdkRectangle geometry;
  gdk_monitor_get_geometry(monitor, &geometry);
  const std::lock_guard lock(mutex_);
  metrics_ = {.width = static_cast<double>(geometry.width),
              .height = static_cast<double>(geometry.height),
              .scale = static_cast<double>(gdk_monitor_get_scale_factor(monitor))};
}

}  // namespace Platform
