#pragma once

#include <functional>
#include <optional>
#include <string>

// What only a process of its own can try out without spoiling the test's. For tests that have
// started no thread. Expectations that fail in the other process are shown and count as false.
namespace TestSupport {

// Runs `attempt` as a user who owns nothing here; gives what it returns.
bool AsStranger(const std::function<bool()>& attempt);

// Runs `attempt` where a file system of one megabyte lies at the existing folder `place`, for that
// process alone; gives what it returns. Nothing where no file system may be mounted.
std::optional<bool> OnSmallDisk(const std::string& place, const std::function<bool()>& attempt);

}  // namespace TestSupport
