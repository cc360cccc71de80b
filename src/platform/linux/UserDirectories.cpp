#include "platform/linux/UserDirectories.h"

#include <filesystem>
#include <string_view>
#include <system_error>

#include <errno.h>
#include <stdlib.h>

namespace Platform {
namespace {

std::string AbsolutePathFromEnvironment(const char* variable) {
  const char* value = ::getenv(variable);
  return value != nullptr && value[0] == '/' ? value : std::string();
}

std::string BaseDirectory(const char* variable, const char* belowHome) {
  std::string path = AbsolutePathFromEnvironment(variable);
  if (!path.empty()) return path;
  path = AbsolutePathFromEnvironment("HOME");
  return path.empty() ? path : path + belowHome;
}

}  // namespace

std::string UserCacheHome() { return BaseDirectory("XDG_CACHE_HOME", "/.cache"); }

std::string UserDataHome() { return BaseDirectory("XDG_DATA_HOME", "/.local/share"); }

std::string ProgramName() {
  std::error_code error;
  std::string name = std::filesystem::read_symlink("/proc/self/exe", error).filename().string();
  // The kernel marks a program whose file was replaced while it ran.
  constexpr std::string_view kDeleted = " (deleted)";
  if (name.ends_with(kDeleted)) name.resize(name.size() - kDeleted.size());
  if (name.empty()) name = ::program_invocation_short_name;
  return name.empty() ? "program" : name;
}

}  // namespace Platform
