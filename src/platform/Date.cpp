#include "QEXCore_iOS/Platform/Date.h"

#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <functional>

namespace Platform {
namespace {

// Midnight of January 1st of the years 1 and 10000.
constexpr double kFirstSecond = -62135596800.0;
constexpr double kSecondPastLast = 253402300800.0;

std::string CalendarText(double secondsSince1970) {
  using std::chrono::days;
  using std::chrono::seconds;
  const std::chrono::sys_seconds time{
      seconds(static_cast<seconds::rep>(std::floor(secondsSince1970)))};
  const auto day = std::chrono::floor<days>(time);
  const std::chrono::year_month_day date(day);
  const std::chrono::hh_mm_ss clock(time - day);
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), "%04d-%02u-%02u %02d:%02d:%02d +0000",
                static_cast<int>(date.year()), static_cast<unsigned>(date.month()),
                static_cast<unsigned>(date.day()), static_cast<int>(clock.hours().count()),
                static_cast<int>(clock.minutes().count()),
                static_cast<int>(clock.seconds().count()));
  return text.data();
}

}  // namespace

Date::Date(double secondsSince1970) : secondsSince1970_(secondsSince1970) {}

Date::~Date() = default;

double Date::SecondsSince1970() const { return secondsSince1970_; }

std::string Date::Description() const {
  const bool isInCalendar =
      secondsSince1970_ >= kFirstSecond && secondsSince1970_ < kSecondPastLast;
  return isInCalendar ? CalendarText(secondsSince1970_) : Value(secondsSince1970_).Description();
}

bool Date::Equals(const Object& other) const {
  const auto* date = dynamic_cast<const Date*>(&other);
  return date != nullptr && Value(date->secondsSince1970_).Equals(secondsSince1970_);
}

std::size_t Date::Hash() const noexcept {
  // Not-a-number has many representations, all equal here; so have the two zeros.
  if (std::isnan(secondsSince1970_)) return 0;
  return std::hash<double>{}(secondsSince1970_);
}

}  // namespace Platform
