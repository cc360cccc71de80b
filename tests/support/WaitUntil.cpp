#include "support/WaitUntil.h"

#include <poll.h>

namespace TestSupport {

bool WaitUntil(const std::function<bool()>& predicate, std::chrono::milliseconds deadline) {
  constexpr int kMillisecondsBetweenQuestions = 1;
  const auto end = std::chrono::steady_clock::now() + deadline;
  while (!predicate()) {
    if (std::chrono::steady_clock::now() >= end) return predicate();
    ::poll(nullptr, 0, kMillisecondsBetweenQuestions);
  }
  return true;
}

}  // namespace TestSupport
