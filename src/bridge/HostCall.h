#pragma once

#include <exception>
#include <utility>

namespace Velmora {

// Writes the one line that tells of something swallowed. `operation` names the public operation and
// `reason` is for people.
void LogSwallowed(const char* operation, const char* reason) noexcept;

// Runs `attempt`, on behalf of the public operation named, and lets nothing that it throws reach
// the caller: a host app, or a thread of the core, neither of which could do anything about it.
template <class Attempt>
void GuardHostCall(const char* operation, Attempt&& attempt) noexcept {
  try {
    std::forward<Attempt>(attempt)();
  } catch (const std::exception& exception) {
    LogSwallowed(operation, exception.what());
  } catch (...) {
    LogSwallowed(operation, "an exception of an unknown type");
  }
}

}  // namespace Velmora
