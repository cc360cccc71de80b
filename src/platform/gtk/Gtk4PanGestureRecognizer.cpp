#include "platform/gtk/Gtk4PanGestureRecognizer.h"

#include <utility>

namespace Platform {

Gtk4PanGestureRecognizer::Gtk4PanGestureRecognizer(std::function<void(PanGestureRecognizer&)> moved)
    : Gtk4Gesture(gtk_gesture_drag_new()), moved_(std::move(moved)) {
  onBegin_ =
      OnSignal<void(double, double)>(Gesture(), "drag-begin", [this](double, double) { Begin(); });
  onUpdate_ = OnSignal<void(double, double)>(Gesture(), "drag-update",
                                             [this](double, double) { Update(); });
}

Point Gtk4PanGestureRecognizer::TranslationInSuperview() const {
  return {.x = point_.x - origin_.x, .y = point_.y - origin_.y};
}

void Gtk4PanGestureRecognizer::SetTranslationInSuperview(const Point& translation) {
  origin_ = {.x = point_.x - translation.x, .y = point_.y - translation.y};
}

// The widget moves with the pointer, so what counts is the point in what it lies in.
Point Gtk4PanGestureRecognizer::PointInSuperview() const {
  Point point;
  gtk_gesture_get_point(Gesture(), nullptr, &point.x, &point.y);
  GtkWidget* widget = gtk_event_controller_get_widget(GTK_EVENT_CONTROLLER(Gesture()));
  GtkWidget* superview = gtk_widget_get_parent(widget);
  if (superview == nullptr) return point_;
  gtk_widget_translate_coordinates(widget, superview, point.x, point.y, &point.x, &point.y);
  return point;
}

void Gtk4PanGestureRecognizer::Begin() {
  isPanning_ = false;
  point_ = PointInSuperview();
  origin_ = point_;
}

void Gtk4PanGestureRecognizer::Update() {
  point_ = PointInSuperview();
  if (!isPanning_) {
    if (!IsBeyondThreshold()) return;
    isPanning_ = true;
    gtk_gesture_set_state(Gesture(), GTK_EVENT_SEQUENCE_CLAIMED);
  }
  const auto moved = moved_;  // this may go meanwhile
  if (moved) moved(*this);
}

bool Gtk4PanGestureRecognizer::IsBeyondThreshold() const {
  GtkWidget* widget = gtk_event_controller_get_widget(GTK_EVENT_CONTROLLER(Gesture()));
  return gtk_drag_check_threshold(widget, static_cast<int>(origin_.x), static_cast<int>(origin_.y),
                                  static_cast<int>(point_.x), static_cast<int>(point_.y)) != FALSE;
}

}  // namespace Platform
