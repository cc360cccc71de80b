#pragma once

#include <string_view>

#include "QEXCore_iOS/Platform/SystemLog.h"

namespace Platform {

// Lines on standard error: "2024-02-29 12:30:00.123 program[process:thread] line", in local time.
// Each is one write(2), also when several objects write at once. A line that standard error does
// not take is lost.
class LinuxSystemLog final : public SystemLog {
 public:
  void Write(std::string_view line) override;
};

}  // namespace Platform
