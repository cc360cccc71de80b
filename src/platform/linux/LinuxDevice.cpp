#include "platform/linux/LinuxDevice.h"

#include <algorithm>
#include <array>
#include <map>
#include <string_view>
#include <utility>

#include <sys/utsname.h>

#include "platform/linux/OsRelease.h"
#include "platform/linux/PlainText.h"
#include "platform/linux/SmallFile.h"

namespace Platform {
namespace {

constexpr std::size_t kMaximumFileSize = 4096;

char LowerCase(char character) {
  return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a')
                                              : character;
}

// What makers of boards leave in fields that they do not fill.
bool IsPlaceholder(std::string_view text) {
  static constexpr std::array<std::string_view, 14> kPlaceholders = {
      "default string", "empty",
      "invalid",        "n/a",
      "none",           "o.e.m.",
      "not applicable", "not available",
      "not specified",  "oem",
      "system family",  "system product name",
      "unknown",        "to be filled by o.e.m."};
  return std::any_of(kPlaceholders.begin(), kPlaceholders.end(), [&](std::string_view placeholder) {
    return std::equal(text.begin(), text.end(), placeholder.begin(), placeholder.end(),
                      [](char left, char right) { return LowerCase(left) == right; });
  });
}

std::string Machine() {
  struct utsname names = {};
  return ::uname(&names) == 0 ? std::string(names.machine) : std::string();
}

}  // namespace

LinuxDevice::LinuxDevice(std::string root) : root_(std::move(root)) {}

std::string LinuxDevice::SystemName() const {
  const std::string name = OsReleaseValue("NAME");
  return name.empty() ? "Linux" : name;
}

std::string LinuxDevice::SystemVersion() const { return OsReleaseValue("VERSION_ID"); }

std::string LinuxDevice::Model() const {
  if (const auto family = DmiText("product_family")) return *family;
  if (const auto product = DmiText("product_name")) return *product;
  return DeviceTreeText("model").value_or("Linux device");
}

std::string LinuxDevice::HardwareModel() const {
  if (const auto product = DmiText("product_name")) return *product + "," + Machine();
  if (const auto compatible = DeviceTreeText("compatible")) return *compatible;
  return Machine();
}

std::string LinuxDevice::OsReleaseValue(const std::string& key) const {
  const std::map<std::string, std::string> values = ReadOsRelease(root_);
  const auto found = values.find(key);
  return found != values.end() ? found->second : std::string();
}

std::optional<std::string> LinuxDevice::DmiText(const std::string& name) const {
  const auto raw = ReadSmallFile(root_ + "/sys/class/dmi/id/" + name, kMaximumFileSize);
  const auto text = raw ? PlainText(*raw) : std::nullopt;
  return text && !IsPlaceholder(*text) ? text : std::nullopt;
}

std::optional<std::string> LinuxDevice::DeviceTreeText(const std::string& name) const {
  const auto raw = ReadSmallFile(root_ + "/proc/device-tree/" + name, kMaximumFileSize);
  if (!raw) return std::nullopt;
  // A list of names, each ended by a zero byte, the most specific first.
  return PlainText(std::string_view(*raw).substr(0, raw->find('\0')));
}

}  // namespace Platform
