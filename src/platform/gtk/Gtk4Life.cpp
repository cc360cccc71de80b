#include "platform/gtk/Gtk4Life.h"

#include <algorithm>
#include <utility>

namespace Platform {
namespace {

constexpr std::chrono::milliseconds kGrace{150};
constexpr std::chrono::seconds kFocusTime{2};  // for another window to get it

}  // namespace

Gtk4Life::Gtk4Life(GtkApplication* application,
                   std::shared_ptr<NotificationCenter> notificationCenter)
    : notificationCenter_(std::move(notificationCenter)),
      windows_([this](GtkWindow* window) { return Follow(window); }, [this] { Update(); }) {
  AwaitLaunch(application);
}

std::vector<SignalConnection> Gtk4Life::Follow(GtkWindow* window) {
  std::vector<SignalConnection> connections;
  connections.push_back(
      OnSignal<void(GParamSpec*)>(window, "notify::is-active", [this](GParamSpec*) { Update(); }));
  for (const char* signal : {"map", "unmap"}) {
    connections.push_back(OnSignal<void()>(window, signal, [this] {
      focusMovesUntil_ = Clock::now() + kFocusTime;
      Update();
    }));
  }
  return connections;
}

// An application is activated right after its start, before its loop turns for the first time.
void Gtk4Life::AwaitLaunch(GtkApplication* application) {
  const auto launch = [this] {
    launch_ = GlibTimer(std::chrono::milliseconds::zero(), [this] {
      FinishLaunching();
      return false;
    });
  };
  if (application == nullptr || g_application_get_is_registered(G_APPLICATION(application))) {
    return launch();
  }
  onStartup_ = OnSignal<void()>(application, "startup", launch, G_CONNECT_AFTER);
}

void Gtk4Life::FinishLaunching() {
  hasLaunched_ = true;
  state_ = IsInFront() ? ApplicationState::Active : ApplicationState::Background;
  Post(kDidFinishLaunchingNotification);
}

void Gtk4Life::Update() {
  const bool isInFront = IsInFront();
  if (!hasLaunched_) return;
  if (isInFront) return EnterForeground();
  if (state_ == ApplicationState::Background) return;
  if (state_.exchange(ApplicationState::Inactive) == ApplicationState::Active) {
    inactiveSince_ = Clock::now();
  }
  AwaitBackground();
}

void Gtk4Life::AwaitBackground() {
  const auto windows = AllToplevels();
  const bool isSeen = std::any_of(windows.begin(), windows.end(), &IsSeen);
  auto end = inactiveSince_ + kGrace;
  if (isSeen) end = std::max(end, focusMovesUntil_);
  const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now());
  grace_ = GlibTimer(std::max(left, std::chrono::milliseconds::zero()), [this] {
    EnterBackground();
    return false;
  });
}

bool Gtk4Life::IsInFront() {
  const auto windows = AllToplevels();
  const bool isActive = std::any_of(windows.begin(), windows.end(), &Platform::IsInFront);
  if (isActive) hasBeenActive_ = true;
  return isActive || (!hasBeenActive_ && std::any_of(windows.begin(), windows.end(), &IsSeen));
}

void Gtk4Life::EnterForeground() {
  grace_ = {};
  const ApplicationState former = state_.exchange(ApplicationState::Active);
  if (former == ApplicationState::Background) Post(kWillEnterForegroundNotification);
}

void Gtk4Life::EnterBackground() {
  state_ = ApplicationState::Background;
  Post(kDidEnterBackgroundNotification);
}

void Gtk4Life::Post(const char* name) { notificationCenter_->Post({.name = name, .userInfo = {}}); }

}  // namespace Platform
