#pragma once

#include <memory>
#include <string>

#include "VelmoraCore/AlertListenerInterface.h"
#include "VelmoraCore/FloatingButtonListenerInterface.h"
#include "VelmoraCore/FullscreenListenerInterface.h"
#include "VelmoraCore/Object.h"
#include "VelmoraCore/UIServiceInterface.h"
#include "VelmoraCore/URLServiceInterface.h"
#include "modules/RuleReport.h"

// What happens to what rules have put before the user. Called on the main queue; each outlives the
// hub where the screen keeps it.
namespace Velmora {

class RuleAlertListener final : public Object, public virtual AlertListenerInterface {
 public:
  // The positive button opens `url`, if it is not empty.
  RuleAlertListener(RuleReport report, std::shared_ptr<UIServiceInterface> ui, std::string url);

  void OnPositiveResponse() override;
  void OnNegativeResponse() override;
  void OnShow() override;
  void OnDismiss() override;

 private:
  const RuleReport report_;
  const std::shared_ptr<UIServiceInterface> ui_;
  const std::string url_;
};

// Links of the scheme "velmora" close the message. Those of "about" and "file", which is what
// anchors and relative links are to a page, stay in it. All others are opened by the system.
class RuleMessageListener final : public Object, public virtual FullscreenListenerInterface {
 public:
  using Message = std::shared_ptr<FullScreenMessageUiInterface>;

  RuleMessageListener(RuleReport report, std::shared_ptr<URLServiceInterface> urls);

  void OnShow(const Message& message) override;
  void OnDismiss(const Message& message) override;
  bool OverrideUrlLoad(const Message& message, const std::string& url) override;

 private:
  const RuleReport report_;
  const std::shared_ptr<URLServiceInterface> urls_;
};

// A tap takes the button away and opens `url`, if it is not empty.
class RuleButtonListener final : public Object, public virtual FloatingButtonListenerInterface {
 public:
  RuleButtonListener(RuleReport report, std::shared_ptr<UIServiceInterface> ui, std::string url);

  // To be called before the button is on screen.
  void SetButton(std::weak_ptr<FloatingButtonInterface> button);

  void OnTapDetected() override;
  void OnPanDetected() override;

 private:
  const RuleReport report_;
  const std::shared_ptr<UIServiceInterface> ui_;
  const std::string url_;
  std::weak_ptr<FloatingButtonInterface> button_;
};

}  // namespace Velmora
