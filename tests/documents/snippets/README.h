#pragma once

// What the pieces of README.md take from an app.

#include <QEXCore_gtk/Gtk.h>

extern GtkApplication* application;
