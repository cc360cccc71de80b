#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>

#include "hub/HubModule.h"

namespace Velmora {

// Calls something later, on the hub's thread, for a part of a module; one thing at a time. For that
// thread only.
class HomeTimer {
 public:
  explicit HomeTimer(HubContext& hub);
  HomeTimer(const HomeTimer&) = delete;
  HomeTimer& operator=(const HomeTimer&) = delete;

  // `action` is called once `wait` has passed, unless the timer is started anew or stopped first,
  // and never once the hub is disposed.
  void Start(std::chrono::milliseconds wait, std::function<void()> action);
  void Stop();

 private:
  Clock& clock_;
  const HubContext::Poster wayHome_;
  std::uint64_t starts_ = 0;
  std::optional<Clock::Ticket> ticket_;
};

}  // namespace Velmora
