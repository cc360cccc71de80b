#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "QEXCore_iOS/Platform/Export.h"

namespace Platform {

// The running process. Safe from any thread.
class QEXCORE_API ProcessInfo {
 public:
  virtual ~ProcessInfo();

  // Version and build of the operating system, in the form "Version 12.1 (Build 16B92)".
  virtual std::string OperatingSystemVersionString() const = 0;

  // One text per frame of the calling thread's stack, the innermost first; empty where the system
  // keeps none.
  virtual std::vector<std::string> CallStackSymbols() const = 0;

  // Tells this process from every other that runs: a copy that a process makes of itself gives
  // another number.
  virtual std::int64_t ProcessIdentifier() const noexcept = 0;

  // Names the calling thread, as debuggers and the kernel show it. The caller keeps to the
  // system's limit of 15 bytes.
  virtual void SetCurrentThreadName(const std::string& name) = 0;
};

}  // namespace Platform
