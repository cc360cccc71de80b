#pragma once

#include <memory>
#include <string>

#include "VelmoraCore/Object.h"
#include "VelmoraCore/UIServiceInterface.h"
#include "services/ui/KRVMessagesMonitor.h"

namespace Velmora {

// Puts the core's alerts, messages, buttons and notifications before the user, and tells the
// application's state. May be called on any thread; nothing throws to the core.
class NativeUiService final : public Object, public virtual UIServiceInterface {
 public:
  // Begins to observe the application's state, and takes up the notifications that earlier
  // processes left waiting.
  NativeUiService();

  void ShowAlert(const std::string& title, const std::string& message,
                 const std::string& positiveButtonText, const std::string& negativeButtonText,
                 const std::shared_ptr<AlertListenerInterface>& listener) override;
  std::shared_ptr<FullScreenMessageUiInterface> CreateFullscreenMessage(
      const std::string& html,
      const std::shared_ptr<FullscreenListenerInterface>& listener) override;
  void ShowLocalNotification(const std::string& identifier, const std::string& content,
                             const std::string& sound, const std::string& category,
                             std::chrono::seconds delay, const std::string& deepLink,
                             std::chrono::seconds fireDate, const std::string& userInfo) override;
  AppState GetAppState() const override;
  void RegisterAppStateListener(
      const std::shared_ptr<AppStateListenerInterface>& listener) override;
  void UnregisterAppStateListener(
      const std::shared_ptr<AppStateListenerInterface>& listener) override;
  bool ShowUrl(const std::string& url) override;
  std::shared_ptr<FloatingButtonInterface> CreateFloatingButton(
      const std::shared_ptr<FloatingButtonListenerInterface>& listener) override;
  bool IsMessageDisplayed() override;

 private:
  const std::shared_ptr<KRVMessagesMonitor> messagesMonitor_;
};

std::shared_ptr<UIServiceInterface> CreateNativeUiService();

}  // namespace Velmora
