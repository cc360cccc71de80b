#include "services/network/Rfc2822Date.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <cmath>
#include <cstddef>
#include <cstdio>

namespace Velmora {
namespace {

using std::chrono::day;
using std::chrono::days;
using std::chrono::floor;
using std::chrono::month;
using std::chrono::seconds;
using std::chrono::sys_days;
using std::chrono::sys_seconds;
using std::chrono::year;
using std::chrono::year_month_day;

constexpr std::array<std::string_view, 7> kWeekdays = {"Sun", "Mon", "Tue", "Wed",
                                                       "Thu", "Fri", "Sat"};
constexpr std::array<std::string_view, 12> kMonths = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                      "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
constexpr sys_seconds kFirst = sys_days(year(1) / 1 / 1);
constexpr sys_seconds kLast = sys_days(year(9999) / 12 / 31) + days(1) - seconds(1);

sys_seconds NearestTime(double secondsSince1970) {
  if (std::isnan(secondsSince1970)) return {};
  const auto bounded = std::clamp(std::floor(secondsSince1970),
                                  static_cast<double>(kFirst.time_since_epoch().count()),
                                  static_cast<double>(kLast.time_since_epoch().count()));
  return sys_seconds(seconds(static_cast<std::int64_t>(bounded)));
}

// Takes a text apart from its start. After the first part that does not fit, nothing fits.
class Reader {
 public:
  explicit Reader(std::string_view text) : rest_(text) {}

  void Skip(std::string_view literal) {
    if (rest_.starts_with(literal)) {
      rest_.remove_prefix(literal.size());
    } else {
      fits_ = false;
    }
  }

  // The index of the three-letter name that comes next.
  template <std::size_t count>
  unsigned Name(const std::array<std::string_view, count>& names) {
    const auto* const found = std::find(names.begin(), names.end(), rest_.substr(0, 3));
    if (found == names.end()) {
      fits_ = false;
      return 0;
    }
    rest_.remove_prefix(3);
    return static_cast<unsigned>(found - names.begin());
  }

  // A number of exactly so many digits, or of fewer, but no less than `fewest`.
  int Number(std::size_t digits) { return Number(digits, digits); }
  int Number(std::size_t fewest, std::size_t most) {
    int number = 0;
    const std::string_view text = rest_.substr(0, most);
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    const auto digits = static_cast<std::size_t>(end - text.data());
    if (error != std::errc() || digits < fewest || number < 0) {
      fits_ = false;
      return 0;
    }
    rest_.remove_prefix(digits);
    return number;
  }

  bool FitsToTheEnd() const { return fits_ && rest_.empty(); }

 private:
  std::string_view rest_;
  bool fits_ = true;
};

}  // namespace

std::string FormatRfc2822Date(double secondsSince1970) {
  const sys_seconds time = NearestTime(secondsSince1970);
  const sys_days date = floor<days>(time);
  const year_month_day calendar(date);
  const std::chrono::hh_mm_ss clock(time - date);
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), "%s, %02u %s %04d %02d:%02d:%02d GMT",
                kWeekdays[std::chrono::weekday(date).c_encoding()].data(),
                static_cast<unsigned>(calendar.day()),
                kMonths[static_cast<unsigned>(calendar.month()) - 1].data(),
                static_cast<int>(calendar.year()), static_cast<int>(clock.hours().count()),
                static_cast<int>(clock.minutes().count()),
                static_cast<int>(clock.seconds().count()));
  return text.data();
}

std::optional<std::int64_t> ParseRfc2822Date(std::string_view text) {
  Reader reader(text);
  reader.Name(kWeekdays);
  reader.Skip(", ");
  const int dayNumber = reader.Number(1, 2);
  reader.Skip(" ");
  const unsigned monthIndex = reader.Name(kMonths);
  reader.Skip(" ");
  const int yearNumber = reader.Number(4);
  reader.Skip(" ");
  const int hour = reader.Number(2);
  reader.Skip(":");
  const int minute = reader.Number(2);
  reader.Skip(":");
  const int second = reader.Number(2);
  reader.Skip(" GMT");
  const year_month_day calendar(year(yearNumber), month(monthIndex + 1),
                                day(static_cast<unsigned>(dayNumber)));
  constexpr int kHours = 24;
  constexpr int kSixty = 60;
  if (!reader.FitsToTheEnd() || !calendar.ok() || hour >= kHours || minute >= kSixty ||
      second >= kSixty) {
    return std::nullopt;
  }
  const sys_seconds time = sys_days(calendar) + std::chrono::hours(hour) +
                           std::chrono::minutes(minute) + seconds(second);
  return time.time_since_epoch().count();
}

}  // namespace Velmora
