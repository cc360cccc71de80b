#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "QEXCore_iOS/Platform/Alert.h"

namespace TestSupport {

class FakeAlertController final : public Platform::AlertController {
 public:
  struct Action {
    std::string title;
    Platform::AlertActionStyle style;
    std::function<void()> handler;
  };

  FakeAlertController(std::optional<std::string> givenTitle,
                      std::optional<std::string> givenMessage)
      : title(std::move(givenTitle)), message(std::move(givenMessage)) {}

  const std::optional<std::string> title;
  const std::optional<std::string> message;
  std::vector<Action> actions;

  // The user chooses the button of that title.
  void Choose(const std::string& button) const {
    for (const Action& action : actions) {
      if (action.title == button) return action.handler();
    }
  }

  // The platform takes the alert away.
  void DismissWithoutAction() const { dismissed_(); }

  void AddAction(const std::string& actionTitle, Platform::AlertActionStyle style,
                 std::function<void()> handler) override {
    actions.push_back({actionTitle, style, std::move(handler)});
  }
  void OnDismissedWithoutAction(std::function<void()> handler) override {
    dismissed_ = std::move(handler);
  }

 private:
  std::function<void()> dismissed_ = [] {};
};

class FakeAlertView final : public Platform::AlertView {
 public:
  explicit FakeAlertView(Platform::AlertViewSettings given) : settings(std::move(given)) {}

  const Platform::AlertViewSettings settings;
  bool isShown = false;

  void Show() override { isShown = true; }
};

}  // namespace TestSupport
