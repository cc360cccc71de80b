#pragma once

#include <gtk/gtk.h>

namespace Platform {

// The content of a window, as the application gives it: its child, save that windows of libadwaita
// have it apart, and end the program of whoever changes their child. On the main queue only.

// Null when there is none.
GtkWidget* ContentOf(GtkWindow* window);

void SetContentOf(GtkWindow* window, GtkWidget* content);

// The signal that tells of another content.
const char* ContentSignalOf(GtkWindow* window);

}  // namespace Platform
