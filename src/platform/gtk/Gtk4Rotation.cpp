#include "platform/gtk/Gtk4Rotation.h"

#include <optional>
#include <utility>

#include "platform/gtk/Gtk4Window.h"

namespace Platform {
namespace {

enum class Orientation { Portrait, Landscape };

// A square one has none.
std::optional<Orientation> OrientationOf(GtkWindow* window) {
  const Rect frame = Gtk4Window::Of(window)->Frame();
  if (frame.width < frame.height) return Orientation::Portrait;
  if (frame.width > frame.height) return Orientation::Landscape;
  return std::nullopt;
}

// How a window stands, and the connection to what shows it.
struct Stand {
  std::optional<Orientation> orientation;
  SignalConnection onLayout;
};

}  // namespace

Gtk4Rotation::Gtk4Rotation(std::shared_ptr<MainQueue> mainQueue)
    : mainQueue_(std::move(mainQueue)),
      watches_(std::make_shared<RotationWatches>()),
      windows_([this](GtkWindow* window) { return Follow(window); }, [] {}) {}

std::unique_ptr<RotationWatch> Gtk4Rotation::Watch(std::function<void()> rotated) {
  return watches_->Add(std::move(rotated));
}

std::vector<SignalConnection> Gtk4Rotation::Follow(GtkWindow* window) {
  const auto stand = std::make_shared<Stand>();
  // The window itself hears of its surface's layout first, and lays out its content.
  const auto follow = [this, window, stand] {
    GdkSurface* surface = gtk_native_get_surface(GTK_NATIVE(window));
    if (surface == nullptr) return;
    stand->onLayout = OnSignal<void(int, int)>(
        surface, "layout",
        [this, window, orientation = &stand->orientation](int, int) {
          const auto now = OrientationOf(window);
          if (!now || now == *orientation) return;
          if (std::exchange(*orientation, now)) Tell();
        },
        G_CONNECT_AFTER);
  };
  if (gtk_widget_get_realized(GTK_WIDGET(window)) != FALSE) follow();
  std::vector<SignalConnection> connections;
  connections.push_back(OnSignal<void()>(window, "realize", follow, G_CONNECT_AFTER));
  return connections;
}

// Not while the windows are being laid out.
void Gtk4Rotation::Tell() {
  mainQueue_->Async([watches = std::weak_ptr<const RotationWatches>(watches_)] {
    if (const auto all = watches.lock()) all->Tell();
  });
}

}  // namespace Platform
