#pragma once

#include <memory>
#include <optional>
#include <string>

#include "hub/HubModule.h"
#include "modules/RuleReport.h"
#include "modules/RuleSet.h"

namespace Velmora {

// Puts the consequences of rules before the user, by way of the services. Belongs to the hub's
// thread. What cannot be done gives one log line.
class RulePresenter {
 public:
  explicit RulePresenter(HubContext& hub);

  // Takes the button from the screen; what else is there stays.
  ~RulePresenter();
  RulePresenter(const RulePresenter&) = delete;
  RulePresenter& operator=(const RulePresenter&) = delete;

  // False while an alert or a full-screen message, whosever, is on screen.
  bool IsScreenFree() const;

  // `folder` is the path of the folder in which the rules' files lie.
  void Show(const Rule& rule, const RuleConsequence& consequence, const std::string& folder);

 private:
  void ShowAlert(const AlertConsequence& alert, const RuleReport& report);
  void ShowMessage(const MessageConsequence& message, const std::string& folder,
                   const RuleReport& report);
  std::optional<std::string> HtmlOf(const MessageConsequence& message, const std::string& folder,
                                    std::string& problem) const;
  void ShowNotification(const NotificationConsequence& notification, const std::string& rule);
  void ShowButton(const ButtonConsequence& button, const RuleReport& report);
  void Open(const std::string& url);

  HubContext& hub_;
  const std::shared_ptr<UIServiceInterface> ui_;
  std::shared_ptr<FloatingButtonInterface> button_;
};

}  // namespace Velmora
