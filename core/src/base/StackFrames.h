#pragma once

#include <array>
#include <cstddef>
#include <string>

namespace Velmora {

// The return addresses of one thread's stack at one moment. Noting them costs microseconds; turning
// them into text costs milliseconds and is left to whoever asks. Never changes.
class StackFrames {
 public:
  // Notes the calling thread's stack, the innermost frames of it when it is deep.
  StackFrames();

  // One line per frame, the innermost first, this class's own left out.
  std::string ToText() const;

 private:
  static constexpr std::size_t kMaximum = 48;

  std::array<void*, kMaximum> addresses_;
  std::size_t count_;
};

}  // namespace Velmora
