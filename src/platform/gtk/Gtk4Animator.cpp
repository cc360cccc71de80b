#include "platform/gtk/Gtk4Animator.h"

#include <algorithm>
#include <utility>

#include <gtk/gtk.h>

namespace Platform {
namespace {

constexpr std::chrono::milliseconds kFrameTime{16};
constexpr std::chrono::seconds kPatience{1};

bool UserWantsAnimations() {
  gboolean wanted = TRUE;
  GtkSettings* settings = gtk_settings_get_default();
  if (settings != nullptr) g_object_get(settings, "gtk-enable-animations", &wanted, nullptr);
  return wanted != FALSE;
}

// Begins and ends gently.
double Eased(double progress) { return progress * progress * (3 - 2 * progress); }

}  // namespace

Gtk4Animator::Gtk4Animator(std::shared_ptr<MainQueue> mainQueue)
    : mainQueue_(std::move(mainQueue)) {}

void Gtk4Animator::Animate(std::chrono::milliseconds duration,
                           const std::function<void()>& animations,
                           std::function<void()> completion) {
  Animation animation;
  if (animations) {
    Steps* const outer = std::exchange(recording_, &animation.steps);
    try {
      animations();
    } catch (...) {
      recording_ = outer;
      throw;
    }
    recording_ = outer;
  }
  animation.duration = UserWantsAnimations() ? duration : std::chrono::milliseconds::zero();
  animation.completion = std::move(completion);
  animation.asked = Clock::now();
  running_.push_back(std::move(animation));
  if (running_.size() == 1) timer_ = GlibTimer(kFrameTime, [this] { return Tick(); });
}

bool Gtk4Animator::Tick() {
  const auto now = Clock::now();
  for (Animation& animation : running_) {
    if (Advance(animation, now)) mainQueue_->Async(std::exchange(animation.completion, nullptr));
  }
  std::erase_if(running_, [now](const Animation& animation) {
    return animation.hasBegun && now - animation.begin >= animation.duration;
  });
  return !running_.empty();
}

// True when it has arrived.
bool Gtk4Animator::Advance(Animation& animation, Clock::time_point now) {
  if (!animation.hasBegun) {
    const bool isReady = std::all_of(animation.steps.begin(), animation.steps.end(),
                                     [](const Step& step) { return step.isReady(); });
    if (!isReady && now - animation.asked < kPatience) return false;
    animation.hasBegun = true;
    animation.begin = now;
  }
  const auto passed = now - animation.begin;
  const bool hasArrived = passed >= animation.duration;
  const double progress = hasArrived ? 1
                                     : std::chrono::duration<double>(passed) /
                                           std::chrono::duration<double>(animation.duration);
  for (const Step& step : animation.steps) step.show(Eased(progress));
  return hasArrived;
}

}  // namespace Platform
