#pragma once

#include <gtk/gtk.h>

#include "QEXCore_iOS/Platform/Host.h"

namespace Platform {

// `host` with GTK's application, screen and Ui in the place of its own. GTK must have been
// initialised, and be used on the calling thread. Opening of URLs stays with `host.application`.
Host WithGtk4(Host host, GtkApplication* application);

// Brings the application of such a host to the user's attention: its front window or, when it has
// none, what it does when it is activated.
void BringToFront(const Application& application);

}  // namespace Platform
