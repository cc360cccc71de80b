#pragma once

#include <chrono>
#include <functional>

namespace TestSupport {

inline constexpr std::chrono::milliseconds kDefaultDeadline{10'000};

// Asks `predicate` again and again, on the calling thread, until it is true or `deadline` has
// passed. Gives its last answer, so that a test reads EXPECT_TRUE(WaitUntil(...)).
bool WaitUntil(const std::function<bool()>& predicate,
               std::chrono::milliseconds deadline = kDefaultDeadline);

}  // namespace TestSupport
