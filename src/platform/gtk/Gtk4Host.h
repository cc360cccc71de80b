#pragma once

#include <gtk/gtk.h>

#include "QEXCore_iOS/Platform/Host.h"

namespace Platform {

// `host` with GTK's application, screen and Ui in the place of its own. GTK must have been
// initialised, and be used on the calling thread. Opening of URLs stays with `host.application`.
Host WithGtk4(Host host, GtkApplication* application);

// Brings the application's front window to the user's attention.
void PresentFrontWindow(const Application& application);

}  // namespace Platform
