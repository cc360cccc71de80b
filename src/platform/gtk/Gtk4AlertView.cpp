#include "platform/gtk/Gtk4AlertView.h"

#include <utility>

#include "QEXCore_iOS/Platform/DeviceError.h"
#include "platform/gtk/Gtk4AlertDialog.h"

namespace Platform {

Gtk4AlertView::Gtk4AlertView(AlertViewSettings settings, FrontWindow frontWindow)
    : settings_(std::move(settings)), frontWindow_(std::move(frontWindow)) {}

void Gtk4AlertView::Show() {
  GtkWindow* window = frontWindow_();
  if (window == nullptr) throw DeviceError("An alert has no window to be shown over.");
  Gtk4Alert alert{.title = settings_.title.value_or(""),
                  .message = settings_.message.value_or(""),
                  .buttons = {},
                  .dismissed = nullptr};
  const auto add = [&](const std::optional<std::string>& title, int index, bool isCancel) {
    if (!title) return;
    alert.buttons.push_back({.title = *title,
                             .isCancel = isCancel,
                             .chosen = [clicked = settings_.clickedButtonAtIndex, index] {
                               if (clicked) clicked(index);
                             }});
  };
  add(settings_.cancelButtonTitle, 0, true);
  add(settings_.otherButtonTitle, 1, false);
  ShowAlertDialog(window, std::move(alert));
}

}  // namespace Platform
