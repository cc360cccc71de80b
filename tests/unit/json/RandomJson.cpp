#include "RandomJson.h"

#include <array>
#include <cmath>
#include <cstring>

namespace Velmora {
namespace {

constexpr int kMaximumDepth = 5;

}  // namespace

RandomJson::RandomJson(std::uint64_t seed, Content content) : random_(seed), content_(content) {}

std::string RandomJson::ObjectText() { return Space() + ObjectText(0) + Space(); }

std::string RandomJson::ArrayText() { return Space() + ArrayText(0) + Space(); }

VariantMap RandomJson::Map() { return Map(0); }

VariantVector RandomJson::Vector() { return Vector(0); }

std::uint64_t RandomJson::Below(std::uint64_t limit) { return random_() % limit; }

std::string RandomJson::Space() {
  constexpr std::array<const char*, 8> spaces = {"", "", "", "", " ", "\n", "\t ", "\r\n"};
  return spaces[Below(spaces.size())];
}

std::string RandomJson::StringText() {
  constexpr std::array<const char*, 14> parts = {
      "a",    "b",       "key",     "some longer text", "\\n",
      "\\\"", "\\\\",    "\\u00e9", "\u20ac",           "\\ud83d\\ude00",
      "\\/",  "\\u001f", "\x7f",    "\\u0000"};
  const std::uint64_t choices = parts.size() - (content_ == Content::OnlyWhatComesBack ? 1 : 0);
  std::string text = content_ == Content::OnlyWhatComesBack ? "\"x" : "\"";
  for (std::uint64_t count = Below(4); count > 0; --count) text += parts[Below(choices)];
  return text + '"';
}

std::string RandomJson::NumberText() {
  const std::string sign = OneIn(3) ? "-" : "";
  switch (Below(6)) {
    case 0:
      return sign + std::to_string(Below(100));
    case 1:
      return sign + std::to_string(random_());
    case 2:
      return sign + std::to_string(random_() | 1U << 31U) + std::to_string(random_());
    case 3:
      return sign + std::to_string(Below(1000)) + '.' + std::to_string(random_());
    case 4:
      return sign + "0." + std::to_string(random_()) + "e-" + std::to_string(Below(330));
    default:
      return sign + std::to_string(Below(10)) + "E+" + std::to_string(Below(300));
  }
}

std::string RandomJson::ValueText(int depth) {
  switch (Below(depth < kMaximumDepth ? 8 : 5)) {
    case 0:
      return StringText();
    case 1:
    case 2:
      return NumberText();
    case 3:
      return OneIn(2) ? "true" : "false";
    case 4:
      return content_ == Content::OnlyWhatComesBack ? "0" : "null";
    case 5:
      return ArrayText(depth + 1);
    default:
      return ObjectText(depth + 1);
  }
}

std::string RandomJson::ObjectText(int depth) {
  std::string text = "{" + Space();
  const std::uint64_t count = Below(6);
  for (std::uint64_t i = 0; i < count; ++i) {
    if (i > 0) text += ',' + Space();
    text += StringText() + Space() + ':' + Space() + ValueText(depth) + Space();
  }
  return text + '}';
}

std::string RandomJson::ArrayText(int depth) {
  std::string text = "[" + Space();
  const std::uint64_t count = Below(6);
  for (std::uint64_t i = 0; i < count; ++i) {
    if (i > 0) text += ',' + Space();
    text += ValueText(depth) + Space();
  }
  return text + ']';
}

std::string RandomJson::Characters() {
  const std::array<std::string, 8> parts = {"a",  "b",      "some longer text", "\"",
                                            "\n", "\u20ac", "\U0001f600",       "c"};
  std::string text;
  for (std::uint64_t count = Below(4); count > 0; --count) text += parts[Below(parts.size())];
  if (OneIn(40)) text += '\0';
  if (OneIn(60)) text += '\xff';
  return text;
}

std::shared_ptr<Variant> RandomJson::Value(int depth) {
  switch (Below(depth < kMaximumDepth ? 10 : 7)) {
    case 0:
      return Variant::FromString(OneIn(20) ? Characters() : "x" + Characters());
    case 1:
      return Variant::FromInteger(static_cast<std::int32_t>(random_()));
    case 2:
      return Variant::FromLong(static_cast<std::int64_t>(random_()));
    case 3: {
      const std::uint64_t pattern = random_();
      double number = 0;
      std::memcpy(&number, &pattern, sizeof number);
      return Variant::FromDouble(number);
    }
    case 4:
      return Variant::FromBoolean(OneIn(2));
    case 5:
      return OneIn(10) ? Variant::FromNull() : Variant::FromBoolean(true);
    case 6:
      return OneIn(10) ? nullptr : Variant::FromInteger(0);
    case 7:
      return Variant::FromVariantVector(Vector(depth + 1));
    default:
      return Variant::FromVariantMap(Map(depth + 1));
  }
}

VariantMap RandomJson::Map(int depth) {
  VariantMap map;
  for (std::uint64_t count = Below(6); count > 0; --count) map[Characters()] = Value(depth);
  return map;
}

VariantVector RandomJson::Vector(int depth) {
  VariantVector vector;
  for (std::uint64_t count = Below(6); count > 0; --count) vector.push_back(Value(depth));
  return vector;
}

}  // namespace Velmora
