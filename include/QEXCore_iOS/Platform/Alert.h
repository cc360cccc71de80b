#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "QEXCore_iOS/Platform/Export.h"

namespace Platform {

enum class AlertActionStyle { Default, Cancel };

// An alert of the modern kind. Lives on the main queue.
class QEXCORE_API AlertController {
 public:
  virtual ~AlertController();

  // Adds a button. When the user chooses it, the alert leaves the screen and `handler` is called on
  // the main queue, once.
  virtual void AddAction(const std::string& title, AlertActionStyle style,
                         std::function<void()> handler) = 0;

  // Called on the main queue, once, when the alert leaves the screen without an action.
  virtual void OnDismissedWithoutAction(std::function<void()> handler) = 0;
};

// What an alert of the legacy kind is made of.
struct QEXCORE_API AlertViewSettings {
  std::optional<std::string> title;
  std::optional<std::string> message;
  std::optional<std::string> cancelButtonTitle;  // absent: no such button
  std::optional<std::string> otherButtonTitle;

  // Called on the main queue when a button is chosen: 0 is the cancel button, 1 the other one,
  // whether or not both are there.
  std::function<void(int buttonIndex)> clickedButtonAtIndex;
};

// An alert of the legacy kind. Lives on the main queue; once shown, it stays on screen without its
// maker holding it.
class QEXCORE_API AlertView {
 public:
  virtual ~AlertView();

  virtual void Show() = 0;
};

}  // namespace Platform
