#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <vector>

#include "QEXCore_iOS/Platform/MainQueue.h"
#include "platform/gtk/GlibTimer.h"

namespace Platform {

// Moves things over time. Lives on the main queue.
class Gtk4Animator {
 public:
  // One thing on its way.
  struct Step {
    std::function<void(double progress)> show;  // from 0 to 1, which it always reaches
    std::function<bool()> isReady;              // false: there is nothing to be seen of it yet
  };

  explicit Gtk4Animator(std::shared_ptr<MainQueue> mainQueue);

  // As Ui::Animate. Begins when all that moves is ready, or after a second. Where the user wants no
  // animations, everything arrives at once.
  void Animate(std::chrono::milliseconds duration, const std::function<void()>& animations,
               std::function<void()> completion);

  // True while the `animations` of a call of Animate run: what changes then is handed to Add.
  bool IsRecording() const { return recording_ != nullptr; }
  void Add(Step step) { recording_->push_back(std::move(step)); }

 private:
  using Clock = std::chrono::steady_clock;
  using Steps = std::vector<Step>;

  struct Animation {
    Steps steps;
    std::chrono::milliseconds duration{};
    std::function<void()> completion;
    Clock::time_point asked;
    Clock::time_point begin;
    bool hasBegun = false;
  };

  bool Tick();
  static bool Advance(Animation& animation, Clock::time_point now);

  const std::shared_ptr<MainQueue> mainQueue_;
  Steps* recording_ = nullptr;
  std::vector<Animation> running_;
  GlibTimer timer_;
};

}  // namespace Platform
