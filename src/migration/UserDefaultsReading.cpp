#include "migration/UserDefaultsReading.h"

#include <array>
#include <charconv>
#include <limits>
#include <string_view>

#include "QEXCore_iOS/Platform/Date.h"
#include "QEXCore_iOS/Platform/Value.h"
#include "services/datastore/NativeDataStore.h"

namespace Velmora {
namespace {

using Platform::NumberType;
using Platform::Value;

constexpr std::string_view kBlanks = " \t\n\v\f\r";

std::string_view WithoutLeadingBlanks(std::string_view text) {
  const std::size_t start = text.find_first_not_of(kBlanks);
  return start == std::string_view::npos ? std::string_view() : text.substr(start);
}

template <class Number>
std::string DecimalText(Number number) {
  std::array<char, 32> buffer;  // the longest double takes 24 characters
  const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number);
  return std::string(buffer.data(), result.ptr);
}

std::string NumberText(const Value& number) {
  if (!NativeDataStore::isTypeOfDouble(number)) return DecimalText(number.AsInt64());
  const NumberType type = *number.StorageType();
  const bool isSingle = type == NumberType::Float32 || type == NumberType::Float;
  return isSingle ? DecimalText(number.AsFloat()) : DecimalText(number.AsDouble());
}

bool IsTrueText(std::string_view text) {
  text = WithoutLeadingBlanks(text);
  if (text.starts_with('+') || text.starts_with('-')) text.remove_prefix(1);
  const std::size_t start = text.find_first_not_of('0');
  return start != std::string_view::npos &&
         std::string_view("YyTt123456789").find(text[start]) != std::string_view::npos;
}

std::int64_t LeadingInteger(std::string_view text) {
  text = WithoutLeadingBlanks(text);
  if (text.starts_with('+')) {
    text.remove_prefix(1);
    if (text.starts_with('-')) return 0;
  }
  std::int64_t number = 0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
  if (result.ec != std::errc::result_out_of_range) return number;
  using Limits = std::numeric_limits<std::int64_t>;
  return text.starts_with('-') ? Limits::min() : Limits::max();
}

}  // namespace

std::optional<std::string> StringForKey(const Platform::UserDefaults& defaults,
                                        const std::string& key) {
  const Value object = defaults.ObjectForKey(key);
  if (object.IsString()) return object.AsString();
  if (object.IsNumber()) return NumberText(object);
  if (object.IsBoolean()) return object.AsBool() ? "1" : "0";
  return std::nullopt;
}

bool BoolForKey(const Platform::UserDefaults& defaults, const std::string& key) {
  const Value object = defaults.ObjectForKey(key);
  return object.IsString() ? IsTrueText(object.AsStringView()) : object.AsBool();
}

std::int64_t IntegerForKey(const Platform::UserDefaults& defaults, const std::string& key) {
  const Value object = defaults.ObjectForKey(key);
  return object.IsString() ? LeadingInteger(object.AsStringView()) : object.AsInt64();
}

std::int64_t DateSecondsForKey(const Platform::UserDefaults& defaults, const std::string& key) {
  const Value object = defaults.ObjectForKey(key);
  const auto date = object.AsObjectOf<Platform::Date>();
  return date ? Value(date->SecondsSince1970()).AsInt64() : 0;
}

}  // namespace Velmora
