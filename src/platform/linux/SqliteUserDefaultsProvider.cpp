#include "platform/linux/SqliteUserDefaultsProvider.h"

#include <array>
#include <cstdio>
#include <optional>
#include <string_view>
#include <utility>

#include "platform/linux/LinuxSystemLog.h"
#include "platform/linux/SqliteUserDefaults.h"
#include "platform/linux/UserDirectories.h"

namespace Platform {
namespace {

constexpr std::size_t kLongestFileName = 200;

bool IsPlain(char character) {
  return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z') ||
         (character >= '0' && character <= '9') || character == '-' || character == '_';
}

// A file name of its own for each name: what is not plain becomes %XX, and so does a leading dot.
std::optional<std::string> FileNameOf(std::string_view name) {
  if (name.empty() || name.size() > kLongestFileName) return std::nullopt;
  std::string file;
  for (const char character : name) {
    if (IsPlain(character) || (character == '.' && !file.empty())) {
      file += character;
    } else {
      std::array<char, 4> escape{};
      std::snprintf(escape.data(), escape.size(), "%%%02X",
                    static_cast<unsigned>(static_cast<unsigned char>(character)));
      file += escape.data();
    }
  }
  if (file.size() > kLongestFileName) return std::nullopt;
  return file;
}

SqliteUserDefaultsProvider::Folders DefaultFolders() {
  const std::string data = UserDataHome();
  if (data.empty()) return {};
  const std::string program = FileNameOf(ProgramName()).value_or("program");
  return {.application = data + "/" + program + "/user-defaults",
          .shared = data + "/user-defaults"};
}

}  // namespace

SqliteUserDefaultsProvider::SqliteUserDefaultsProvider()
    : SqliteUserDefaultsProvider(DefaultFolders(), std::make_shared<LinuxSystemLog>()) {}

SqliteUserDefaultsProvider::SqliteUserDefaultsProvider(Folders folders,
                                                       std::shared_ptr<SystemLog> systemLog,
                                                       std::chrono::milliseconds patience)
    : folders_(std::move(folders)),
      systemLog_(std::move(systemLog)),
      patience_(patience),
      standard_(Make(folders_.application, "standard")) {}

SqliteUserDefaultsProvider::~SqliteUserDefaultsProvider() = default;

std::shared_ptr<UserDefaults> SqliteUserDefaultsProvider::Standard() { return standard_; }

std::shared_ptr<UserDefaults> SqliteUserDefaultsProvider::OpenSuite(const std::string& name) {
  const std::optional<std::string> file = FileNameOf(name);
  if (!file) return nullptr;
  std::shared_ptr<SqliteUserDefaults> suite;
  {
    const std::lock_guard lock(mutex_);
    auto& known = suites_[*file];
    if (!known) known = Make(folders_.shared, *file);
    suite = known;
  }
  return suite->Open() ? suite : nullptr;
}

std::shared_ptr<SqliteUserDefaults> SqliteUserDefaultsProvider::Make(
    const std::string& folder, const std::string& file) const {
  return std::make_shared<SqliteUserDefaults>(folder, file, systemLog_, patience_);
}

}  // namespace Platform
