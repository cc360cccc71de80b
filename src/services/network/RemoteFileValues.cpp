#include "services/network/RemoteFileValues.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <limits>
#include <optional>
#include <stdexcept>
#include <string_view>

#include "VelmoraCore/Log.h"
#include "VelmoraCore/StringUtils.h"
#include "interop/HexConversion.h"
#include "services/network/RemoteFileLog.h"
#include "services/network/Rfc2822Date.h"

namespace Velmora {
namespace {

// The number that the text begins with, behind blanks; 0 when it begins with none. Words for
// numbers are none.
double LeadingNumber(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(" \t\n\v\f\r"), text.size()));
  if (text.starts_with('+')) {
    text.remove_prefix(1);
    if (text.starts_with('-')) return 0;
  }
  const std::string_view digits = text.substr(text.starts_with('-') ? 1 : 0);
  if (digits.empty() || digits.front() < '0' || digits.front() > '9') return 0;
  double number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc::result_out_of_range) return number;
  const bool isTiny = std::string_view(text.data(), end).find('-', 1) != std::string_view::npos;
  const double farthest = isTiny ? 0 : std::numeric_limits<double>::max();
  return text.starts_with('-') ? -farthest : farthest;
}

bool CanStandInAHeader(std::string_view value) {
  return std::none_of(value.begin(), value.end(), [](char character) {
    const auto code = static_cast<unsigned char>(character);
    return (code < 0x20 && character != '\t') || code == 0x7F;
  });
}

// Nothing when the text is not hexadecimal, or stands for bytes that no header can carry.
std::optional<std::string> EntityTagFrom(const std::string& hex) {
  try {
    const std::vector<std::uint8_t> bytes = HexToBin(hex.data(), hex.size());
    std::string tag(bytes.begin(), bytes.end());
    if (CanStandInAHeader(tag)) return tag;
  } catch (const std::invalid_argument&) {
    return std::nullopt;
  }
  return std::nullopt;
}

}  // namespace

std::string CacheFileExtension(const std::string& lastModified, const std::string& entityTag,
                               const std::string& url) {
  if (lastModified.empty()) {
    Log::Debug(kRemoteFileLogTag, "Server did not return Last-Modified for %s", url.c_str());
  }
  if (entityTag.empty()) {
    Log::Debug(kRemoteFileLogTag, "Server did not return ETag for %s", url.c_str());
  }
  const std::int64_t seconds = ParseRfc2822Date(lastModified).value_or(0);
  return StringUtils::ToString(seconds) + "_" +
         BinToHex(reinterpret_cast<const unsigned char*>(entityTag.data()), entityTag.size());
}

std::vector<std::string> CacheFileValues(const std::string& path) {
  constexpr std::string_view kSeparator = "_";
  const std::string_view name = std::string_view(path).substr(path.rfind('/') + 1);
  const std::size_t dot = name.rfind('.');
  if (dot == std::string_view::npos) {
    Log::Warning(kRemoteFileLogTag, "No Extension on Cache File (%s)", path.c_str());
    return {};
  }
  const std::string extension(name.substr(dot + 1));
  std::vector<std::string> values;
  std::string_view rest = extension;
  while (!rest.empty()) {
    const std::size_t length = std::min(rest.find(kSeparator), rest.size());
    if (length > 0) values.emplace_back(rest.substr(0, length));
    rest.remove_prefix(std::min(length + kSeparator.size(), rest.size()));
  }
  if (values.size() != 2) {
    Log::Warning(kRemoteFileLogTag, "Invalid Extension on Cache File (%s)", extension.c_str());
  }
  return values;
}

std::map<std::string, std::string> RevalidationHeaders(const std::string& path) {
  const std::vector<std::string> values = CacheFileValues(path);
  std::map<std::string, std::string> headers;
  if (values.empty()) return headers;
  headers["If-Modified-Since"] = FormatRfc2822Date(LeadingNumber(values[0]));
  if (values.size() < 2) return headers;
  if (auto entityTag = EntityTagFrom(values[1])) {
    headers["If-None-Match"] = *std::move(entityTag);
  } else {
    Log::Debug(kRemoteFileLogTag, "No ETag can be had from the name of the cache file %s",
               path.c_str());
  }
  return headers;
}

}  // namespace Velmora
