#pragma once

#include <memory>

#include <gtk/gtk.h>

#include "platform/gtk/WeakObject.h"

namespace Platform {

// What an image can be given: whatever it recognises, it is a gesture of GTK's.
class Gtk4Gesture {
 public:
  explicit Gtk4Gesture(GtkGesture* gesture) : gesture_(Retain(gesture)) {
    gtk_gesture_single_set_button(GTK_GESTURE_SINGLE(gesture), GDK_BUTTON_PRIMARY);
  }
  virtual ~Gtk4Gesture() = default;
  Gtk4Gesture(const Gtk4Gesture&) = delete;
  Gtk4Gesture& operator=(const Gtk4Gesture&) = delete;

  GtkGesture* Gesture() const { return gesture_.get(); }

 private:
  const GObjectPointer<GtkGesture> gesture_;
};

}  // namespace Platform
