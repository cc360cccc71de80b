#pragma once

#include <algorithm>
#include <chrono>

namespace Velmora {

// Waits between attempts: each twice as long as the one before, up to a longest one. A value of one
// thread's.
class RetryDelay {
 public:
  RetryDelay(std::chrono::milliseconds first, std::chrono::milliseconds longest)
      : first_(first), longest_(longest), next_(first) {}

  // How long to wait now.
  std::chrono::milliseconds Next() {
    const std::chrono::milliseconds delay = next_;
    next_ = std::min(next_ * 2, longest_);
    return delay;
  }

  // An attempt has succeeded.
  void Reset() { next_ = first_; }

 private:
  std::chrono::milliseconds first_;
  std::chrono::milliseconds longest_;
  std::chrono::milliseconds next_;
};

}  // namespace Velmora
