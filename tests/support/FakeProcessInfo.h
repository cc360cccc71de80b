#pragma once

#include <cstdint>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "QEXCore_iOS/Platform/ProcessInfo.h"
#include "support/Guarded.h"

namespace TestSupport {

// Keeps the names that threads were given instead of naming them.
class FakeProcessInfo final : public Platform::ProcessInfo {
 public:
  void SetOperatingSystemVersionString(const std::string& text) { version_.Set(text); }
  void SetCallStackSymbols(const std::vector<std::string>& symbols) { symbols_.Set(symbols); }

  // Every name given so far, and the thread that gave it to itself, in order.
  std::vector<std::pair<std::thread::id, std::string>> ThreadNames() const {
    return threadNames_.Get();
  }

  std::string OperatingSystemVersionString() const override { return version_.Get(); }
  std::vector<std::string> CallStackSymbols() const override { return symbols_.Get(); }
  std::int64_t ProcessIdentifier() const noexcept override { return 4711; }
  void SetCurrentThreadName(const std::string& name) override {
    threadNames_.With([&](auto& names) { names.emplace_back(std::this_thread::get_id(), name); });
  }

 private:
  Guarded<std::string> version_{"Version 12.1 (Build 16B92)"};
  Guarded<std::vector<std::string>> symbols_{{"0 first frame", "1 second frame"}};
  Guarded<std::vector<std::pair<std::thread::id, std::string>>> threadNames_;
};

}  // namespace TestSupport
