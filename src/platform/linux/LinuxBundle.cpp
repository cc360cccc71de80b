#include "platform/linux/LinuxBundle.h"

#include <algorithm>
#include <exception>
#include <filesystem>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>

#include "platform/linux/PropertyList.h"
#include "platform/linux/SmallFile.h"

namespace Platform {
namespace {

namespace fs = std::filesystem;

constexpr const char* kInfoFile = "Info.plist";

// The kernel marks a program that was replaced while it runs.
std::string RunningProgram() {
  constexpr std::string_view kReplaced = " (deleted)";
  std::error_code error;
  std::string path = fs::read_symlink("/proc/self/exe", error).string();
  if (path.ends_with(kReplaced) && !fs::exists(path, error)) {
    path.resize(path.size() - kReplaced.size());
  }
  return path;
}

std::string FolderOf(const std::string& executablePath) {
  if (executablePath.empty()) return {};
  const fs::path program(executablePath);
  const fs::path beside = program.parent_path();
  const fs::path shared = beside.parent_path() / "share" / program.filename();
  std::error_code error;
  if (fs::exists(beside / kInfoFile, error)) return beside.string();
  return fs::is_directory(shared, error) ? shared.string() : beside.string();
}

// True for "a" and "a/b", false where a part is empty, "." or "..".
bool IsPlainName(const std::string& name) {
  if (name.empty() || name.find('\0') != std::string::npos) return false;
  std::size_t start = 0;
  while (start <= name.size()) {
    const std::size_t end = std::min(name.find('/', start), name.size());
    const std::string_view part(name.data() + start, end - start);
    if (part.empty() || part == "." || part == "..") return false;
    start = end + 1;
  }
  return true;
}

bool LiesIn(const fs::path& folder, const fs::path& file) {
  std::error_code error;
  const fs::path realFolder = fs::canonical(folder, error);
  if (error) return false;
  const fs::path realFile = fs::canonical(file, error);
  if (error) return false;
  const auto difference =
      std::mismatch(realFolder.begin(), realFolder.end(), realFile.begin(), realFile.end());
  return difference.first == realFolder.end();
}

Value ReadInfo(const std::string& folder) {
  if (folder.empty()) return {};
  try {
    const auto bytes = ReadSmallFile(folder + "/" + kInfoFile, kMaximumPropertyListSize);
    return bytes ? ParsePropertyList(*bytes) : Value();
  } catch (const std::exception&) {
    return {};  // out of memory
  }
}

std::string FindResource(const std::string& folder, const std::string& name) {
  if (folder.empty() || !IsPlainName(name)) return {};
  const fs::path path = fs::path(folder) / name;
  std::error_code error;
  if (!fs::is_regular_file(path, error) || !LiesIn(folder, path)) return {};
  return path.string();
}

}  // namespace

LinuxBundle::LinuxBundle() : LinuxBundle(RunningProgram()) {}

LinuxBundle::LinuxBundle(std::string executablePath)
    : executablePath_(std::move(executablePath)), folder_(FolderOf(executablePath_)) {}

LinuxBundle::LinuxBundle(std::string executablePath, std::string folder)
    : executablePath_(std::move(executablePath)), folder_(std::move(folder)) {}

std::string LinuxBundle::BundlePath() const { return folder_; }

std::string LinuxBundle::ExecutablePath() const { return executablePath_; }

Value LinuxBundle::ObjectForInfoDictionaryKey(const std::string& key) const {
  std::call_once(infoRead_, [this] { info_ = ReadInfo(folder_); });
  return info_.Get(key);
}

std::string LinuxBundle::PathForResource(const std::string& name) const {
  return FindResource(folder_, name);
}

}  // namespace Platform
