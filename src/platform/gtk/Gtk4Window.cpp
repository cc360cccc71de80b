#include "platform/gtk/Gtk4Window.h"

#include <utility>

#include "platform/gtk/Gtk4View.h"
#include "platform/gtk/Gtk4ViewController.h"
#include "platform/gtk/WindowContent.h"

namespace Platform {
namespace {

using Owner = std::shared_ptr<Gtk4Window>;

GQuark OwnerQuark() { return g_quark_from_static_string("qexcore-window"); }

}  // namespace

std::shared_ptr<Gtk4Window> Gtk4Window::Of(GtkWindow* window) {
  auto* object = G_OBJECT(window);
  if (const auto* owner = static_cast<Owner*>(g_object_get_qdata(object, OwnerQuark()))) {
    return *owner;
  }
  auto made = std::make_shared<Gtk4Window>(window);
  g_object_set_qdata_full(object, OwnerQuark(), new Owner(made),
                          [](gpointer owner) { delete static_cast<Owner*>(owner); });
  return made;
}

Gtk4Window::Gtk4Window(GtkWindow* window) : window_(window) {
  onDestroy_ = OnSignal<void()>(window, "destroy", [this] { LoseWindow(); });
}

GtkWidget* Gtk4Window::Content() const {
  const auto window = window_.Get();
  if (!window) return nullptr;
  return overlay_ ? overlay_->Content() : ContentOf(window.get());
}

Rect Gtk4Window::Frame() const {
  const auto window = window_.Get();
  if (!window) return {};
  const Size size = overlay_ ? overlay_->ContentSize() : ContentSize(window.get());
  return {.width = size.width, .height = size.height};
}

std::shared_ptr<ViewController> Gtk4Window::RootViewController() const {
  const auto window = window_.Get();
  if (!window) return nullptr;
  GtkWidget* content = Content();
  // Where there is no content, messages are presented on the window all the same.
  return Gtk4ViewController::For(content != nullptr ? content : GTK_WIDGET(window.get()));
}

void Gtk4Window::AddSubview(const std::shared_ptr<View>& view) {
  const auto window = window_.Get();
  const auto* placed = dynamic_cast<const Gtk4Placed*>(view.get());
  if (!window || placed == nullptr) return;
  const auto& placement = placed->Placement();
  if (!overlay_ || !overlay_->Holds(view)) placement->Leave();
  if (!overlay_) {
    overlay_ = std::make_unique<Gtk4Overlay>(window.get(), ContentSize(window.get()));
  }
  overlay_->Add(view);
  placement->SetWayOut([self = weak_from_this(), placement = placement.get()] {
    if (const auto in = self.lock()) in->Remove(placement);
  });
}

void Gtk4Window::BringSubviewToFront(const std::shared_ptr<View>& view) {
  if (overlay_) overlay_->BringToFront(view);
}

void Gtk4Window::Remove(const Gtk4Placement* placement) {
  if (!overlay_) return;
  overlay_->Remove(placement);
  if (overlay_->Views().empty()) overlay_.reset();
}

void Gtk4Window::LoseWindow() {
  const auto overlay = std::exchange(overlay_, nullptr);
  if (!overlay) return;
  overlay->Abandon();
  for (const auto& view : overlay->Views()) {
    auto& placed = dynamic_cast<Gtk4Placed&>(*view);
    placed.Placement()->SetWayOut(nullptr);
    placed.LoseWindow();
  }
}

Size Gtk4Window::ContentSize(GtkWindow* window) const {
  GtkWidget* content = ContentOf(window);
  const bool fills = content != nullptr && gtk_widget_get_width(content) > 0 &&
                     gtk_widget_get_halign(content) == GTK_ALIGN_FILL &&
                     gtk_widget_get_valign(content) == GTK_ALIGN_FILL;
  if (fills) {
    const int across = gtk_widget_get_margin_start(content) + gtk_widget_get_margin_end(content);
    const int down = gtk_widget_get_margin_top(content) + gtk_widget_get_margin_bottom(content);
    return {static_cast<double>(gtk_widget_get_width(content) + across),
            static_cast<double>(gtk_widget_get_height(content) + down)};
  }
  int width = gtk_widget_get_width(GTK_WIDGET(window));
  int height = gtk_widget_get_height(GTK_WIDGET(window));
  // Before it has come on screen, the size that it is to have.
  if (width <= 0 || height <= 0) gtk_window_get_default_size(window, &width, &height);
  return {static_cast<double>(std::max(0, width)), static_cast<double>(std::max(0, height))};
}

}  // namespace Platform
