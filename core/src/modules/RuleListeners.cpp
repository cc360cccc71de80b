#include "modules/RuleListeners.h"

#include <utility>

#include "VelmoraCore/EventNames.h"
#include "VelmoraCore/Log.h"
#include "modules/AsciiText.h"

namespace Velmora {
namespace {

void Open(UIServiceInterface& ui, const std::string& url) {
  if (!url.empty() && !ui.ShowUrl(url)) Log::Warning("Rules", "the URL of a rule was not opened");
}

}  // namespace

RuleAlertListener::RuleAlertListener(RuleReport report, std::shared_ptr<UIServiceInterface> ui,
                                     std::string url)
    : report_(std::move(report)), ui_(std::move(ui)), url_(std::move(url)) {}

void RuleAlertListener::OnPositiveResponse() {
  report_.Tell(RuleOutcomes::kPositive);
  Open(*ui_, url_);
}

void RuleAlertListener::OnNegativeResponse() { report_.Tell(RuleOutcomes::kNegative); }

void RuleAlertListener::OnShow() { report_.Tell(RuleOutcomes::kShown); }

void RuleAlertListener::OnDismiss() { report_.Tell(RuleOutcomes::kDismissed); }

RuleMessageListener::RuleMessageListener(RuleReport report,
                                         std::shared_ptr<URLServiceInterface> urls)
    : report_(std::move(report)), urls_(std::move(urls)) {}

void RuleMessageListener::OnShow(const Message& /*message*/) { report_.Tell(RuleOutcomes::kShown); }

void RuleMessageListener::OnDismiss(const Message& /*message*/) {
  report_.Tell(RuleOutcomes::kDismissed);
}

bool RuleMessageListener::OverrideUrlLoad(const Message& message, const std::string& url) {
  // Schemes are compared whatever their case.
  const std::string scheme = AsciiText::LowerCase(urls_->GetScheme(url));
  if (scheme == "about" || scheme == "file") return false;
  if (message == nullptr || scheme.empty()) return true;
  if (scheme == "velmora") {
    message->Remove();
  } else {
    report_.Tell(RuleOutcomes::kLink);
    message->OpenUrl(url);
  }
  return true;
}

RuleButtonListener::RuleButtonListener(RuleReport report, std::shared_ptr<UIServiceInterface> ui,
                                       std::string url)
    : report_(std::move(report)), ui_(std::move(ui)), url_(std::move(url)) {}

void RuleButtonListener::SetButton(std::weak_ptr<FloatingButtonInterface> button) {
  button_ = std::move(button);
}

void RuleButtonListener::OnTapDetected() {
  report_.Tell(RuleOutcomes::kTapped);
  if (const std::shared_ptr<FloatingButtonInterface> button = button_.lock()) button->Remove();
  Open(*ui_, url_);
}

void RuleButtonListener::OnPanDetected() {}

}  // namespace Velmora
