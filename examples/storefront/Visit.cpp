#include "Visit.h"

#include <chrono>
#include <functional>
#include <future>
#include <iostream>
#include <memory>
#include <optional>
#include <thread>

#include <QEXCore_iOS/Platform/Host.h>
#include <QEXCore_iOS/QEXCore.h>
#include <QEXCore_iOS/QEXExtensionEvent.h>

#include "CartReader.h"

namespace Storefront {
namespace {

using namespace std::chrono_literals;

constexpr auto kPatience = 10s;
constexpr auto kNetworkPatience = 20s;

// What `ask` hands to the callback that it is given; nothing when that is not called in time.
template <class Answer>
std::optional<Answer> AnswerTo(const std::function<void(std::function<void(const Answer&)>)>& ask) {
  const auto promise = std::make_shared<std::promise<Answer>>();
  std::future<Answer> answer = promise->get_future();
  ask([promise](const Answer& value) { promise->set_value(value); });
  if (answer.wait_for(kPatience) != std::future_status::ready) return std::nullopt;
  return answer.get();
}

}  // namespace

bool Visit::Start(const std::string& appId, const std::string& configurationFile) const {
  if (!configurationFile.empty()) QEXCore::configureWithFileInPath(configurationFile);
  if (!appId.empty()) QEXCore::configureWithAppId(appId);
  return AnswerTo<bool>([](const auto& answer) { QEXCore::start([answer] { answer(true); }); })
      .value_or(false);
}

void Visit::FetchRules() const {
  observer_.WaitUntil(
      [this] { return observer_.StateOf("configuration").Get("rules.url").IsString(); }, kPatience);
  QEXCore::downloadRules();
  observer_.WaitUntil([this] { return observer_.StateOf("rules").Get("count").AsInt64() > 0; },
                      kPatience);
}

Platform::Value Visit::Begin(const Launch& launch) const {
  QEXCore::collectLaunchInfo({{"krv_deeplink", launch.deepLink},
                              {"krv_m_id", launch.messageId},
                              {"krv_m_l_id", launch.notificationId},
                              {"launched.by", "the shop's own key, which the SDK leaves alone"}});
  QEXCore::setPushIdentifier(Platform::Value::FromData({0x0A, 0x0B}));
  QEXCore::lifecycleStart({{"channel", "kiosk"}});
  Platform::Value context;
  observer_.WaitUntil(
      [&] {
        context = observer_.StateOf("lifecycle").Get("contextdata");
        return context.IsDictionary();
      },
      kPatience);
  return context;
}

void Visit::LookAround() const {
  QEXCore::trackState("catalogue", {{"category", "shoes"}});
  QEXCore::trackAction("addToCart", {{"sku", "A-17"}, {"size", "M"}});
  PutIntoCart("A-17");
  // The visitor goes on when what a rule shows has come on screen, which the main queue sees to.
  AnswerTo<bool>([](const auto& answer) {
    Platform::Host::Current()->mainQueue->Async([answer] { answer(true); });
  });
}

void Visit::BuyShoes() const {
  // Context data are texts; the price is dropped with a warning.
  QEXCore::trackAction("checkout", {{"cart", "A-17"}, {"price", 19.90}});
  QEXCore::collectPii({{"email", "visitor@example.com"}});
}

void Visit::Leave() const { QEXCore::lifecyclePause(); }

void Visit::TellIdentities() const {
  const auto status = AnswerTo<QEXMobilePrivacyStatus>(
      [](const auto& answer) { QEXCore::getPrivacyStatus(answer); });
  if (status) {
    std::cout << "privacy status: " << static_cast<unsigned>(*status) << '\n';
  }
  const auto identities = AnswerTo<std::optional<std::string>>(
      [](const auto& answer) { QEXCore::getSdkIdentities(answer); });
  std::cout << "identities: " << identities.value_or(std::nullopt).value_or("none") << '\n';
}

HitNumbers Visit::AskForHits() const {
  using EventPointer = std::shared_ptr<QEXExtensionEvent>;
  const auto response = AnswerTo<EventPointer>([](const auto& answer) {
    QEXCore::dispatchEventWithResponseCallback(
        QEXExtensionEvent::extensionEventWithName("how many hits?", "analytics", "query", {},
                                                  nullptr),
        answer, nullptr);
  });
  if (!response || !*response) return {};
  const Platform::Value numbers = (*response)->eventData();
  return {numbers.Get("queued").AsInt64(), numbers.Get("sent").AsInt64()};
}

bool Visit::WaitUntilHitsAreSent() const {
  const auto deadline = std::chrono::steady_clock::now() + kNetworkPatience;
  while (AskForHits().waiting > 0) {
    if (std::chrono::steady_clock::now() > deadline) return false;
    std::this_thread::sleep_for(200ms);
  }
  return true;
}

}  // namespace Storefront
