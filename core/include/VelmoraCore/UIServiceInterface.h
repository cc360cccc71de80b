#pragma once

#include <chrono>
#include <memory>
#include <string>

#include "VelmoraCore/AlertListenerInterface.h"
#include "VelmoraCore/AppState.h"
#include "VelmoraCore/AppStateListenerInterface.h"
#include "VelmoraCore/Export.h"
#include "VelmoraCore/FloatingButtonInterface.h"
#include "VelmoraCore/FloatingButtonListenerInterface.h"
#include "VelmoraCore/FullScreenMessageUiInterface.h"
#include "VelmoraCore/FullscreenListenerInterface.h"
#include "VelmoraCore/Object.h"

namespace Velmora {

// Everything that is put before the user, and whether the application is in front. May be called on
// any thread; what concerns the screen is done later, on the main queue, and logged when it fails.
// Never throws. Listeners may be empty pointers.
class VELMORA_CORE_API UIServiceInterface : public virtual ObjectInterface {
 public:
  ~UIServiceInterface() override;

  // Shows an alert, unless an alert or a message is on screen. An empty button text leaves the
  // button out.
  virtual void ShowAlert(const std::string& title, const std::string& message,
                         const std::string& positiveButtonText,
                         const std::string& negativeButtonText,
                         const std::shared_ptr<AlertListenerInterface>& listener) = 0;

  // A message that is not on screen until its Show().
  virtual std::shared_ptr<FullScreenMessageUiInterface> CreateFullscreenMessage(
      const std::string& html, const std::shared_ptr<FullscreenListenerInterface>& listener) = 0;

  // Schedules a notification: at `fireDate`, counted from the start of 1970 UTC, or after `delay`
  // when `fireDate` is 0. `userInfo` is JSON. Empty texts are left out.
  virtual void ShowLocalNotification(const std::string& identifier, const std::string& content,
                                     const std::string& sound, const std::string& category,
                                     std::chrono::seconds delay, const std::string& deepLink,
                                     std::chrono::seconds fireDate,
                                     const std::string& userInfo) = 0;

  virtual AppState GetAppState() const = 0;

  // A listener is held once however often it is registered. Unregistering one that is not
  // registered changes nothing.
  virtual void RegisterAppStateListener(
      const std::shared_ptr<AppStateListenerInterface>& listener) = 0;
  virtual void UnregisterAppStateListener(
      const std::shared_ptr<AppStateListenerInterface>& listener) = 0;

  // Asks the system to open `url`. False when it is no URL or nothing can open it.
  virtual bool ShowUrl(const std::string& url) = 0;

  // A button that is not on screen until its Display().
  virtual std::shared_ptr<FloatingButtonInterface> CreateFloatingButton(
      const std::shared_ptr<FloatingButtonListenerInterface>& listener) = 0;

  // True while an alert or a full-screen message is on screen.
  virtual bool IsMessageDisplayed() = 0;
};

}  // namespace Velmora
