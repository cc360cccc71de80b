#pragma once

#include <string>

#include "QEXCore_iOS/Platform/ProcessInfo.h"

namespace Platform {

class LinuxProcessInfo final : public ProcessInfo {
 public:
  // Reads /etc and /usr below `root` instead of those of the running system.
  explicit LinuxProcessInfo(std::string root = "");

  // The distribution's version and build; where it names none, the kernel's release stands in.
  // Neither holds a blank.
  std::string OperatingSystemVersionString() const override;

  // Each with its number, the file it lies in, the address, and the function where it is known. At
  // most the 128 innermost frames.
  std::vector<std::string> CallStackSymbols() const override;

  std::int64_t ProcessIdentifier() const noexcept override;

  // A longer name than the system takes changes nothing.
  void SetCurrentThreadName(const std::string& name) override;

 private:
  const std::string root_;
};

}  // namespace Platform
