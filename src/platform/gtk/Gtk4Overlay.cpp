#include "platform/gtk/Gtk4Overlay.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "platform/gtk/Gtk4View.h"
#include "platform/gtk/KeptFocus.h"
#include "platform/gtk/WindowContent.h"

namespace Platform {
namespace {

const std::shared_ptr<Gtk4Placement>& PlacementOf(const std::shared_ptr<View>& view) {
  return dynamic_cast<const Gtk4Placed&>(*view).Placement();
}

int Rounded(double length) {
  constexpr double kLongest = 1 << 20;
  return static_cast<int>(std::lround(std::clamp(length, -kLongest, kLongest)));
}

// GTK wants every widget asked for its size before it is given one.
void Measure(GtkWidget* widget) {
  int least = 0;
  gtk_widget_measure(widget, GTK_ORIENTATION_HORIZONTAL, -1, &least, nullptr, nullptr, nullptr);
  gtk_widget_measure(widget, GTK_ORIENTATION_VERTICAL, -1, &least, nullptr, nullptr, nullptr);
}

}  // namespace

Gtk4Overlay::Gtk4Overlay(GtkWindow* window, const Size& size)
    : window_(window),
      overlay_(Retain(GTK_OVERLAY(gtk_overlay_new()))),
      focusBefore_(gtk_window_get_focus(window)),
      size_(size) {
  onPlace_ = OnSignal<gboolean(GtkWidget*, GdkRectangle*)>(
      overlay_.get(), "get-child-position",
      [this](GtkWidget* child, GdkRectangle* place) { return Place(child, place) ? TRUE : FALSE; });
  onChild_ = OnSignal<void(GParamSpec*)>(window, ContentSignalOf(window), [this](GParamSpec*) {
    if (!isExchanging_) TakeContent();
  });
  TakeContent();
}

Gtk4Overlay::~Gtk4Overlay() {
  onChild_.Disconnect();
  const auto views = std::exchange(views_, {});
  for (const auto& view : views) {
    gtk_overlay_remove_overlay(overlay_.get(), PlacementOf(view)->Widget());
  }
  if (window_ != nullptr) GiveContentBack();
}

GtkWidget* Gtk4Overlay::Content() const { return gtk_overlay_get_child(overlay_.get()); }

void Gtk4Overlay::Add(const std::shared_ptr<View>& view) {
  if (Holds(view)) return BringToFront(view);
  views_.push_back(view);
  gtk_overlay_add_overlay(overlay_.get(), PlacementOf(view)->Widget());
}

bool Gtk4Overlay::Holds(const std::shared_ptr<View>& view) const {
  return std::find(views_.begin(), views_.end(), view) != views_.end();
}

void Gtk4Overlay::BringToFront(const std::shared_ptr<View>& view) {
  const auto found = std::find(views_.begin(), views_.end(), view);
  if (found == views_.end() || found + 1 == views_.end()) return;
  std::rotate(found, found + 1, views_.end());
  gtk_widget_insert_before(PlacementOf(view)->Widget(), GTK_WIDGET(overlay_.get()), nullptr);
}

void Gtk4Overlay::Remove(const Gtk4Placement* placement) {
  const auto found = std::find_if(views_.begin(), views_.end(), [placement](const auto& view) {
    return PlacementOf(view).get() == placement;
  });
  if (found == views_.end()) return;
  const auto view = *found;  // it may live no longer than here
  views_.erase(found);
  GtkWidget* focus = window_ == nullptr ? nullptr : gtk_window_get_focus(window_);
  const bool hadFocus =
      focus != nullptr &&
      (focus == placement->Widget() || gtk_widget_is_ancestor(focus, placement->Widget()) != FALSE);
  gtk_overlay_remove_overlay(overlay_.get(), placement->Widget());
  if (hadFocus) GiveFocusBack(window_, focusBefore_.Get().get());
}

void Gtk4Overlay::Abandon() {
  window_ = nullptr;
  onChild_.Disconnect();
}

void Gtk4Overlay::TakeContent() {
  GtkWidget* child = ContentOf(window_);
  if (child == GTK_WIDGET(overlay_.get())) return;
  const KeptFocus focus(window_);
  const auto content = Retain(child);
  isExchanging_ = true;
  SetContentOf(window_, nullptr);
  gtk_overlay_set_child(overlay_.get(), content.get());
  SetContentOf(window_, GTK_WIDGET(overlay_.get()));
  isExchanging_ = false;
}

void Gtk4Overlay::GiveContentBack() {
  const KeptFocus focus(window_);
  const auto content = Retain(Content());
  gtk_overlay_set_child(overlay_.get(), nullptr);
  SetContentOf(window_, content.get());
}

bool Gtk4Overlay::Place(GtkWidget* child, GdkRectangle* place) {
  FollowSize();
  for (const auto& view : views_) {
    const auto& placement = PlacementOf(view);
    if (placement->Widget() != child) continue;
    Measure(child);
    const Rect frame = placement->ShownFrame();
    *place = {Rounded(frame.x), Rounded(frame.y), Rounded(std::max(0.0, frame.width)),
              Rounded(std::max(0.0, frame.height))};
    return true;
  }
  return false;
}

// Called while the overlay is laid out, before its views are.
void Gtk4Overlay::FollowSize() {
  auto* widget = GTK_WIDGET(overlay_.get());
  const Size now{static_cast<double>(gtk_widget_get_width(widget)),
                 static_cast<double>(gtk_widget_get_height(widget))};
  if (now == size_) return;
  for (const auto& view : views_) PlacementOf(view)->Follow(size_, now);
  size_ = now;
}

}  // namespace Platform
