#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "QEXCore_iOS/Platform/SystemLog.h"
#include "support/Guarded.h"

namespace TestSupport {

// Keeps the lines instead of writing them.
class FakeSystemLog final : public Platform::SystemLog {
 public:
  std::vector<std::string> Lines() const { return lines_.Get(); }

  // The lines so far, which are then forgotten.
  std::vector<std::string> TakeLines() { return lines_.Exchange({}); }

  void Write(std::string_view line) override {
    lines_.With([&](auto& lines) { lines.emplace_back(line); });
  }

 private:
  Guarded<std::vector<std::string>> lines_;
};

}  // namespace TestSupport
