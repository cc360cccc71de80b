#include "platform/gtk/Gtk4AlertController.h"

#include <utility>

namespace Platform {

Gtk4AlertController::Gtk4AlertController(const std::optional<std::string>& title,
                                         const std::optional<std::string>& message)
    : alert_{.title = title.value_or(""),
             .message = message.value_or(""),
             .buttons = {},
             .dismissed = nullptr} {}

void Gtk4AlertController::AddAction(const std::string& title, AlertActionStyle style,
                                    std::function<void()> handler) {
  alert_.buttons.push_back({.title = title,
                            .isCancel = style == AlertActionStyle::Cancel,
                            .chosen = std::move(handler)});
}

void Gtk4AlertController::OnDismissedWithoutAction(std::function<void()> handler) {
  alert_.dismissed = std::move(handler);
}

}  // namespace Platform
