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
      defaultWidget_(gtk_window_get_default_widget(window)) {
  const auto focus = focus_.Get();
  if (!focus || !GTK_IS_TEXT(focus.get())) return;
  auto* text = GTK_EDITABLE(focus.get());
  if (gtk_editable_get_selection_bounds(text, &selectionStart_, &selectionEnd_) == FALSE) {
    selectionStart_ = selectionEnd_ = gtk_editable_get_position(text);
  }
}

KeptFocus::~KeptFocus() {
  const auto focus = focus_.Get();
  GiveFocusBack(window_, focus.get());
  if (focus && GTK_IS_TEXT(focus.get())) {
    gtk_editable_select_region(GTK_EDITABLE(focus.get()), selectionStart_, selectionEnd_);
  }
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
