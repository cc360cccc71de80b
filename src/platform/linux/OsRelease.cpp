#include "platform/linux/OsRelease.h"

#include <optional>
#include <string_view>

#include <glib.h>

#include "platform/linux/GlibPointers.h"
#include "platform/linux/PlainText.h"
#include "platform/linux/SmallFile.h"

namespace Platform {
namespace {

constexpr std::size_t kMaximumSize = 65'536;

std::optional<std::string> Unquoted(const std::string& text) {
  const GCharPointer value(g_shell_unquote(text.c_str(), nullptr));
  if (!value) return std::nullopt;
  return PlainText(value.get());
}

std::string_view Trimmed(std::string_view text) {
  constexpr std::string_view kBlanks = " \t\r";
  const std::size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

void AddAssignment(std::string_view line, std::map<std::string, std::string>& values) {
  line = Trimmed(line);
  const std::size_t equals = line.find('=');
  if (line.empty() || line.front() == '#' || equals == std::string_view::npos) return;
  if (line.find('\0') != std::string_view::npos) return;
  const std::optional<std::string> value = Unquoted(std::string(line.substr(equals + 1)));
  if (value) values[std::string(line.substr(0, equals))] = *value;
}

}  // namespace

std::map<std::string, std::string> ReadOsRelease(const std::string& root) {
  std::optional<std::string> text = ReadSmallFile(root + "/etc/os-release", kMaximumSize);
  if (!text) text = ReadSmallFile(root + "/usr/lib/os-release", kMaximumSize);

  std::map<std::string, std::string> values;
  std::string_view rest = text ? std::string_view(*text) : std::string_view();
  while (!rest.empty()) {
    const std::size_t end = rest.find('\n');
    AddAssignment(rest.substr(0, end), values);
    rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
  }
  return values;
}

}  // namespace Platform
