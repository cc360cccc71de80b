#include "modules/HomeTimer.h"

#include <utility>

namespace Velmora {

HomeTimer::HomeTimer(HubContext& hub) : clock_(hub.GetClock()), wayHome_(hub.WayHome()) {}

void HomeTimer::Start(std::chrono::milliseconds wait, std::function<void()> action) {
  Stop();
  // The timer lives as long as the way home leads there.
  const auto atHome = [this, start = starts_, action = std::move(action)] {
    if (start == starts_) action();
  };
  ticket_ = clock_.CallAfter(wait, [wayHome = wayHome_, atHome] { wayHome(atHome); });
}

void HomeTimer::Stop() {
  ++starts_;
  if (ticket_.has_value()) clock_.Cancel(*std::exchange(ticket_, std::nullopt));
}

}  // namespace Velmora
