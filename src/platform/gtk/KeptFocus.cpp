#include "platform/gtk/KeptFocus.h"

namespace Platform {
namespace {

bool IsIn(GtkWindow* window, GtkWidget* widget) {
  return widget != nullptr && gtk_widget_is_ancestor(widget, GTK_WIDGET(window)) != FALSE;
}

}  // namespace

KeptFocus::KeptFocus(GtkWindow* window)
    : window_(window),
      focus_(gtk_window_get_focus(window)),
      defaultWidget_(gtk_window_get_default_widget(window)) {}

KeptFocus::~KeptFocus() {
  GiveFocusBack(window_, focus_.Get().get());
  const auto defaultWidget = defaultWidget_.Get();
  if (IsIn(window_, defaultWidget.get())) {
    gtk_window_set_default_widget(window_, defaultWidget.get());
  }
}

void GiveFocusBack(GtkWindow* window, GtkWidget* widget) {
  if (!IsIn(window, widget)) return;
  if (GTK_IS_TEXT(widget)) {
    // With all selected, what the user types next would take the place of what is there.
    gtk_text_grab_focus_without_selecting(GTK_TEXT(widget));
  } else {
    gtk_window_set_focus(window, widget);
  }
}

}  // namespace Platform
