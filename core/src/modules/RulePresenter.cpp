#include "modules/RulePresenter.h"

#include <chrono>
#include <cstdint>
#include <optional>

#include "VelmoraCore/Log.h"
#include "modules/JsonText.h"
#include "modules/RuleListeners.h"
#include "modules/TextFile.h"

namespace Velmora {
namespace {

constexpr const char* kLogTag = "Rules";

template <class... Functions>
struct Overloaded : Functions... {
  using Functions::operator()...;
};
template <class... Functions>
Overloaded(Functions...) -> Overloaded<Functions...>;

}  // namespace

RulePresenter::RulePresenter(HubContext& hub) : hub_(hub), ui_(hub.Services().GetUIService()) {}

RulePresenter::~RulePresenter() {
  if (button_ != nullptr) button_->Remove();
}

bool RulePresenter::IsScreenFree() const { return ui_ == nullptr || !ui_->IsMessageDisplayed(); }

void RulePresenter::Show(const Rule& rule, const RuleConsequence& consequence,
                         const std::string& folder) {
  if (ui_ == nullptr) {
    Log::Warning(kLogTag, "the rule \"%s\" shows nothing: there is no screen service",
                 rule.id.c_str());
    return;
  }
  const RuleReport report(hub_, rule.id, NameOf(consequence));
  std::visit(Overloaded{
                 [&](const AlertConsequence& alert) { ShowAlert(alert, report); },
                 [&](const MessageConsequence& message) { ShowMessage(message, folder, report); },
                 [&](const NotificationConsequence& notification) {
                   ShowNotification(notification, rule.id);
                 },
                 [&](const ButtonConsequence& button) { ShowButton(button, report); },
                 [&](const OpenConsequence& open) { Open(open.url); },
             },
             consequence);
}

void RulePresenter::ShowAlert(const AlertConsequence& alert, const RuleReport& report) {
  ui_->ShowAlert(alert.title, alert.message, alert.positive, alert.negative,
                 std::make_shared<RuleAlertListener>(report, ui_, alert.url));
}

void RulePresenter::ShowMessage(const MessageConsequence& message, const std::string& folder,
                                const RuleReport& report) {
  const std::shared_ptr<URLServiceInterface> urls = hub_.Services().GetURLService();
  std::string problem;
  const std::optional<std::string> html = HtmlOf(message, folder, problem);
  if (!html || urls == nullptr) {
    Log::Error(kLogTag, "a message cannot be shown: %s",
               html ? "there is no URL service" : problem.c_str());
    return;
  }
  ui_->CreateFullscreenMessage(*html, std::make_shared<RuleMessageListener>(report, urls))->Show();
}

std::optional<std::string> RulePresenter::HtmlOf(const MessageConsequence& message,
                                                 const std::string& folder,
                                                 std::string& problem) const {
  if (!message.base64.empty()) {
    const std::shared_ptr<EncodingServiceInterface> encoding = hub_.Services().GetEncodingService();
    std::string html = encoding == nullptr ? "" : encoding->Base64Decode(message.base64);
    if (!html.empty()) return html;
    problem = encoding == nullptr ? "there is no encoding service" : "it is no text in base64";
    return std::nullopt;
  }
  constexpr std::int64_t kMaxBytes = std::int64_t{4} * 1024 * 1024;
  const std::string path = folder + '/' + message.html;
  std::optional<std::string> html =
      TextFile::Read(*hub_.Services().GetFileSystemService(), path, kMaxBytes, problem);
  if (!html) problem = "\"" + path + "\" cannot be read: " + problem;
  return html;
}

void RulePresenter::ShowNotification(const NotificationConsequence& notification,
                                     const std::string& rule) {
  std::string userInfo;
  if (!notification.userInfo.empty()) {
    userInfo = JsonText::Write(hub_.Services(), notification.userInfo, kLogTag,
                               "the user information of a notification is left out")
                   .value_or("");
  }
  ui_->ShowLocalNotification(rule, notification.text, notification.sound, notification.category,
                             std::chrono::seconds(notification.delay), notification.link,
                             std::chrono::seconds(0), userInfo);
}

void RulePresenter::ShowButton(const ButtonConsequence& button, const RuleReport& report) {
  if (button_ != nullptr) button_->Remove();
  const auto listener = std::make_shared<RuleButtonListener>(report, ui_, button.url);
  button_ = ui_->CreateFloatingButton(listener);
  listener->SetButton(button_);
  button_->Display();
}

void RulePresenter::Open(const std::string& url) {
  if (!ui_->ShowUrl(url)) Log::Warning(kLogTag, "the URL of a rule was not opened");
}

}  // namespace Velmora
