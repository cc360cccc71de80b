#include "services/ui/KRVSystemNotificationHandler.h"

#include "QEXCore_iOS/Platform/Application.h"
#include "QEXCore_iOS/Platform/Host.h"
#include "VelmoraCore/Log.h"

using Velmora::AppState;
using Velmora::Log;

namespace {

constexpr const char* kLogTag = "AppState";

}  // namespace

KRVSystemNotificationHandler& KRVSystemNotificationHandler::sharedInstance() {
  static KRVSystemNotificationHandler& shared = [&]() -> KRVSystemNotificationHandler& {
    auto handler = std::make_unique<KRVSystemNotificationHandler>();
    handler->init();
    return *handler.release();
  }();
  return shared;
}

void KRVSystemNotificationHandler::init() {
  registerForNotification(Platform::kDidFinishLaunchingNotification);
  registerForNotification(Platform::kDidEnterBackgroundNotification);
  registerForNotification(Platform::kWillEnterForegroundNotification);
}

AppState KRVSystemNotificationHandler::getAppState() const {
  return appStateHandler_->GetAppState();
}

void KRVSystemNotificationHandler::registerListener(const Listener& listener) {
  appStateHandler_->RegisterListener(listener);
}

void KRVSystemNotificationHandler::unregisterListener(const Listener& listener) {
  appStateHandler_->UnregisterListener(listener);
}

std::size_t KRVSystemNotificationHandler::getNumListeners() const {
  return appStateHandler_->GetNumListeners();
}

void KRVSystemNotificationHandler::handleAppNotification(
    const Platform::Notification& notification) {
  const Platform::Value& options = notification.userInfo;
  if (!options.Get(Platform::kLaunchOptionsLocationKey).IsAbsent()) {
    Log::Debug(kLogTag, "ignoring launch notification (triggered by location change)");
  } else if (!options.Get(Platform::kLaunchOptionsNewsstandDownloadsKey).IsAbsent()) {
    Log::Debug(kLogTag, "ignoring launch notification (triggered by a Newsstand download request)");
  } else if (notification.name == Platform::kDidFinishLaunchingNotification) {
    FinishLaunching();
  } else if (notification.name == Platform::kDidEnterBackgroundNotification) {
    Enter(AppState::Background);
  } else if (notification.name == Platform::kWillEnterForegroundNotification) {
    Enter(AppState::Foreground);
  }
}

void KRVSystemNotificationHandler::registerForNotification(const std::string& name) {
  const auto center = Platform::Host::Current()->notificationCenter;
  observations_.push_back(center->AddObserver(
      name,
      [this](const Platform::Notification& notification) { handleAppNotification(notification); }));
}

void KRVSystemNotificationHandler::FinishLaunching() {
  const auto application = Platform::Host::Current()->application;
  if (application->State() != Platform::ApplicationState::Background) {
    return Enter(AppState::Foreground);
  }
  Enter(AppState::Background);
  Log::Debug(kLogTag, "ignoring launch notification (app is in the background)");
}

void KRVSystemNotificationHandler::Enter(AppState state) {
  appStateHandler_->SetAppState(state);
  appStateHandler_->NotifyListeners(state);
}
