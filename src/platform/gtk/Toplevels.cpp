#include "platform/gtk/Toplevels.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace Platform {
namespace {

// Dialogs over dialogs end somewhere.
constexpr int kDeepestDialog = 1000;

bool IsModalOver(GtkWindow* dialog, GtkWindow* window) {
  return gtk_window_get_transient_for(dialog) == window && gtk_window_get_modal(dialog) != FALSE &&
         gtk_widget_get_visible(GTK_WIDGET(dialog)) != FALSE;
}

bool IsMinimized(GtkWindow* window) {
  GdkSurface* surface = gtk_native_get_surface(GTK_NATIVE(window));
  if (surface == nullptr || !GDK_IS_TOPLEVEL(surface)) return false;
  return (gdk_toplevel_get_state(GDK_TOPLEVEL(surface)) & GDK_TOPLEVEL_STATE_MINIMIZED) != 0;
}

}  // namespace

std::vector<GtkWindow*> AllToplevels() {
  constexpr std::string_view kInspector = "GtkInspectorWindow";
  GListModel* toplevels = gtk_window_get_toplevels();
  std::vector<GtkWindow*> windows;
  for (guint i = 0; i < g_list_model_get_n_items(toplevels); ++i) {
    const GObjectPointer<GtkWidget> item(GTK_WIDGET(g_list_model_get_item(toplevels, i)));
    if (GTK_IS_WINDOW(item.get()) && G_OBJECT_TYPE_NAME(item.get()) != kInspector) {
      windows.push_back(GTK_WINDOW(item.get()));
    }
  }
  return windows;
}

GtkWindow* DialogOver(GtkWindow* window) {
  const auto windows = AllToplevels();
  const auto found = std::find_if(windows.begin(), windows.end(),
                                  [window](GtkWindow* each) { return IsModalOver(each, window); });
  return found == windows.end() ? nullptr : *found;
}

GtkWindow* WindowBelow(GtkWindow* window) {
  for (int depth = 0; depth < kDeepestDialog; ++depth) {
    GtkWindow* below = gtk_window_get_transient_for(window);
    if (below == nullptr || gtk_window_get_modal(window) == FALSE) break;
    window = below;
  }
  return window;
}

bool IsSeen(GtkWindow* window) {
  return gtk_widget_get_visible(GTK_WIDGET(window)) != FALSE && !IsMinimized(window);
}

bool IsInFront(GtkWindow* window) {
  return gtk_window_is_active(window) != FALSE &&
         gtk_widget_get_mapped(GTK_WIDGET(window)) != FALSE && !IsMinimized(window);
}

ToplevelWatch::ToplevelWatch(Connect connect, std::function<void()> changed)
    : connect_(std::move(connect)) {
  onItemsChanged_ = OnSignal<void(guint, guint, guint)>(
      gtk_window_get_toplevels(), "items-changed",
      [this, changed = std::move(changed)](guint, guint, guint) {
        Update();
        changed();
      });
  Update();
}

void ToplevelWatch::Update() {
  const auto windows = AllToplevels();
  std::erase_if(connections_, [&windows](const auto& each) {
    return std::find(windows.begin(), windows.end(), each.first) == windows.end();
  });
  for (GtkWindow* window : windows) {
    if (!connections_.contains(window)) connections_.emplace(window, connect_(window));
  }
}

}  // namespace Platform
