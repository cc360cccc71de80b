#include "modules/RetryAfter.h"

#include <algorithm>
#include <ctime>
#include <iomanip>
#include <locale>
#include <sstream>
#include <string_view>

namespace Velmora {
namespace {

using std::chrono::seconds;

constexpr seconds kLongest = std::chrono::hours(24);

bool IsNumber(const std::string& text) {
  return !text.empty() && std::all_of(text.begin(), text.end(),
                                      [](char digit) { return digit >= '0' && digit <= '9'; });
}

std::optional<std::chrono::sys_seconds> ParseDate(const std::string& text) {
  // The parser below is content with a part of a date.
  constexpr std::size_t kLength = std::string_view("Tue, 05 Mar 2024 10:20:30 GMT").size();
  if (text.size() != kLength) return std::nullopt;
  std::istringstream stream(text);
  stream.imbue(std::locale::classic());
  std::tm date{};
  stream >> std::get_time(&date, "%a, %d %b %Y %H:%M:%S GMT");
  if (stream.fail()) return std::nullopt;
  constexpr int kFirstYear = 1900;
  const std::chrono::year_month_day day{std::chrono::year(date.tm_year + kFirstYear),
                                        std::chrono::month(static_cast<unsigned>(date.tm_mon) + 1),
                                        std::chrono::day(static_cast<unsigned>(date.tm_mday))};
  if (!day.ok()) return std::nullopt;
  return std::chrono::sys_days(day) + std::chrono::hours(date.tm_hour) +
         std::chrono::minutes(date.tm_min) + seconds(date.tm_sec);
}

}  // namespace

std::optional<seconds> ParseRetryAfter(const std::string& text,
                                       std::chrono::system_clock::time_point now) {
  if (IsNumber(text)) {
    constexpr std::size_t kManyDigits = 9;
    if (text.size() > kManyDigits) return kLongest;
    return std::min(seconds(std::stol(text)), kLongest);
  }
  const std::optional<std::chrono::sys_seconds> date = ParseDate(text);
  if (!date.has_value()) return std::nullopt;
  return std::clamp(*date - std::chrono::floor<seconds>(now), seconds::zero(), kLongest);
}

}  // namespace Velmora
