#include "services/ui/NativeUiService.h"

#include "QEXCore_iOS/Platform/Host.h"
#include "VelmoraCore/TryCatch.h"
#include "interop/StringConversion.h"
#include "services/ui/FloatingButton.h"
#include "services/ui/FullscreenMessage.h"
#include "services/ui/KRVAlertHandler.h"
#include "services/ui/KRVLocalNotificationHandler.h"
#include "services/ui/KRVSystemNotificationHandler.h"
#include "services/ui/KRVUrlHandler.h"

namespace Velmora {
namespace {

double Seconds(std::chrono::seconds duration) { return static_cast<double>(duration.count()); }

}  // namespace

NativeUiService::NativeUiService()
    : Object("NativeUiService"), messagesMonitor_(std::make_shared<KRVMessagesMonitor>()) {
  KRVSystemNotificationHandler::sharedInstance();
  TrySwallow([] { Platform::Host::Current()->userNotificationCenter->ResumePending(); });
}

void NativeUiService::ShowAlert(const std::string& title, const std::string& message,
                                const std::string& positiveButtonText,
                                const std::string& negativeButtonText,
                                const std::shared_ptr<AlertListenerInterface>& listener) {
  KRVAlertHandler::showWithTitle(ToNSString(title), ToNSString(message),
                                 ToNSString(positiveButtonText), ToNSString(negativeButtonText),
                                 listener, messagesMonitor_);
}

std::shared_ptr<FullScreenMessageUiInterface> NativeUiService::CreateFullscreenMessage(
    const std::string& html, const std::shared_ptr<FullscreenListenerInterface>& listener) {
  auto message = std::make_shared<FullscreenMessage>();
  message->InitMessage(html, listener, messagesMonitor_);
  return message;
}

void NativeUiService::ShowLocalNotification(const std::string& identifier,
                                            const std::string& content, const std::string& sound,
                                            const std::string& category, std::chrono::seconds delay,
                                            const std::string& deepLink,
                                            std::chrono::seconds fireDate,
                                            const std::string& userInfo) {
  KRVLocalNotificationHandler::scheduleWithIdentifier(
      ToNSString(identifier), ToNSString(content), ToNSString(sound), ToNSString(category),
      Seconds(delay), ToNSString(deepLink), Seconds(fireDate), ToNSString(userInfo));
}

AppState NativeUiService::GetAppState() const {
  return KRVSystemNotificationHandler::sharedInstance().getAppState();
}

void NativeUiService::RegisterAppStateListener(
    const std::shared_ptr<AppStateListenerInterface>& listener) {
  KRVSystemNotificationHandler::sharedInstance().registerListener(listener);
}

void NativeUiService::UnregisterAppStateListener(
    const std::shared_ptr<AppStateListenerInterface>& listener) {
  KRVSystemNotificationHandler::sharedInstance().unregisterListener(listener);
}

bool NativeUiService::ShowUrl(const std::string& url) {
  return KRVUrlHandler::showUrl(ToNSString(url));
}

std::shared_ptr<FloatingButtonInterface> NativeUiService::CreateFloatingButton(
    const std::shared_ptr<FloatingButtonListenerInterface>& listener) {
  return std::make_shared<FloatingButton>(listener);
}

bool NativeUiService::IsMessageDisplayed() { return messagesMonitor_->isDisplayed(); }

std::shared_ptr<UIServiceInterface> CreateNativeUiService() {
  return std::make_shared<NativeUiService>();
}

}  // namespace Velmora
