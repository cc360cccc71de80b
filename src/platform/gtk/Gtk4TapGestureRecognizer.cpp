#include "platform/gtk/Gtk4TapGestureRecognizer.h"

#include <utility>

namespace Platform {

Gtk4TapGestureRecognizer::Gtk4TapGestureRecognizer(int requiredTaps, std::function<void()> tapped)
    : Gtk4Gesture(gtk_gesture_click_new()) {
  // GTK goes on counting where taps come quickly: each full number is one more.
  onReleased_ = OnSignal<void(int, double, double)>(
      Gesture(), "released", [requiredTaps, tapped = std::move(tapped)](int count, double, double) {
        if (requiredTaps > 0 && count % requiredTaps == 0 && tapped) tapped();
      });
}

}  // namespace Platform
