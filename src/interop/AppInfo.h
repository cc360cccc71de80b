#pragma once

#include <memory>
#include <optional>
#include <string>

#include "QEXCore_iOS/Platform/UserDefaults.h"

namespace Velmora {

// Remembers the application group under which preferences are shared.
//
// Not synchronised: set the group once, early, on one thread, before the first operation that makes
// the core. From then on any thread may read.
class AppInfo {
 public:
  AppInfo() = delete;

  // Takes effect for every later GetUserDefaults; an absent group leaves none set.
  static void SetAppGroup(std::optional<std::string> appGroup);

  // The group as it was set, or absent.
  static const std::optional<std::string>& GetAppGroup();

  // The preferences to use, never null: the group's suite when a group is set, the platform knows
  // suites and this one can be made; else the application's own.
  static std::shared_ptr<Platform::UserDefaults> GetUserDefaults();

 private:
  static std::optional<std::string>& Group();
};

}  // namespace Velmora
