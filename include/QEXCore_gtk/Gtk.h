#pragma once

#include "QEXCore_iOS/Platform/Host.h"

// GTK's own type; nothing else of GTK is needed to include this.
typedef struct _GtkApplication GtkApplication;

namespace Gtk {

// The device with a screen on GTK 4 and WebKitGTK 6.0, to be installed before the first call into
// the SDK:
//
//   Platform::Host::Install(Gtk::CreateHost(application));
//
// To be called on the thread that runs GLib's default context, before or after GTK was initialised.
// The main queue does its work on that thread only, as long as the context is run.
//
// `application`, which the host keeps, says which windows are the application's; null stands for
// every window of the process. Its life is told through the notification centre: the end of its
// launch once its loop runs, the background when for a moment none of its windows, dialogs
// included, has been active, the foreground when one is again.
//
// When the user clicks a notification, a window is presented, or the application activated when it
// has none, and then `options.notificationOpened` is called. Where no display can be opened, one
// line on the system log says so, and the host is the one of
// Platform::Host::CreateDefault(options).
QEXCORE_API Platform::Host CreateHost(
    GtkApplication* application, const Platform::HostOptions& options = Platform::HostOptions());

}  // namespace Gtk
