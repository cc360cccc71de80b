#pragma once

#include <memory>
#include <string>
#include <vector>

#include "QEXCore_iOS/Platform/Export.h"
#include "QEXCore_iOS/Platform/Window.h"

namespace Platform {

// The notices about its life that an application posts through the notification centre, on the main
// thread. The first may carry launch options as its user information.
inline constexpr const char* kDidFinishLaunchingNotification =
    "UIApplicationDidFinishLaunchingNotification";
inline constexpr const char* kDidEnterBackgroundNotification =
    "UIApplicationDidEnterBackgroundNotification";
inline constexpr const char* kWillEnterForegroundNotification =
    "UIApplicationWillEnterForegroundNotification";

// Launch options: the process was started because the device moved, or for a download.
inline constexpr const char* kLaunchOptionsLocationKey = "UIApplicationLaunchOptionsLocationKey";
inline constexpr const char* kLaunchOptionsNewsstandDownloadsKey =
    "UIApplicationLaunchOptionsNewsstandDownloadsKey";

enum class ApplicationState : int { Active = 0, Inactive = 1, Background = 2 };

// The running application.
class QEXCORE_API Application {
 public:
  virtual ~Application();

  // Safe from any thread.
  virtual ApplicationState State() const = 0;

  // The window that takes the user's input; null when none does. On the main queue only.
  virtual std::shared_ptr<Window> KeyWindow() const = 0;

  // Every window, in the application's order. On the main queue only.
  virtual std::vector<std::shared_ptr<Window>> Windows() const = 0;

  // Has `url` opened by whatever opens such URLs. False when nothing does, and when the text is no
  // absolute URL. Safe from any thread; does not wait for what opens it.
  virtual bool OpenUrl(const std::string& url) = 0;
};

}  // namespace Platform
