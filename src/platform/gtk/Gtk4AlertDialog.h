#pragma once

#include <functional>
#include <string>
#include <vector>

#include <gtk/gtk.h>

namespace Platform {

// What an alert says and offers.
struct Gtk4Alert {
  struct Button {
    std::string title;
    bool isCancel = false;
    std::function<void()> chosen;
  };

  std::string title;
  std::string message;
  std::vector<Button> buttons;
  std::function<void()> dismissed;  // it left the screen without a button; may be empty
};

// Shows the alert as a modal dialog over `window`, with its cancel buttons first. The dialog leaves
// before `chosen` or `dismissed` is called, once. The Escape key, like the window manager's close
// button, stands for the cancel button; it dismisses an alert without buttons and does nothing in
// any other. An alert whose window goes is dismissed. Bytes that are no UTF-8 are replaced, and a
// text that no screen would hold is cut. On the main queue only.
void ShowAlertDialog(GtkWindow* window, Gtk4Alert alert);

}  // namespace Platform
