#pragma once

#include <gtk/gtk.h>

#include "platform/gtk/WeakObject.h"

namespace Platform {

// Gives the keyboard's focus and the default button of a window back to the widgets that had them,
// when this goes: they lose them when they are put elsewhere in the window. What was selected in a
// text may not be any more; the text and the place of its cursor stay.
class KeptFocus {
 public:
  explicit KeptFocus(GtkWindow* window);
  ~KeptFocus();
  KeptFocus(const KeptFocus&) = delete;
  KeptFocus& operator=(const KeptFocus&) = delete;

 private:
  GtkWindow* const window_;
  const WeakObject<GtkWidget> focus_;
  const WeakObject<GtkWidget> defaultWidget_;
};

// Gives the focus to the widget, unless that has left the window.
void GiveFocusBack(GtkWindow* window, GtkWidget* widget);

}  // namespace Platform
