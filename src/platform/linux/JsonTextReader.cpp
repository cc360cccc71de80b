#include "platform/linux/JsonTextReader.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <vector>

#include <simdjson.h>

#include "platform/linux/JsonTextFault.h"
#include "platform/linux/ThreadLease.h"

namespace Platform {
namespace {

namespace dom = simdjson::dom;

// A thread's parser holds about fourteen times the length of the longest text that it has read.
// One that has read a longer text than this does not outlive the call.
constexpr std::size_t kMaximumKeptCapacity = std::size_t{256} * 1024;

// simdjson counts the level of what lies in a container, and does not count empty ones.
constexpr std::size_t kParserDepth = JsonSerialization::kMaximumDepth + 1;

// A container that is being walked.
struct Level {
  dom::object::iterator member;
  dom::object::iterator memberEnd;
  dom::array::iterator element;
  dom::array::iterator elementEnd;
  bool isObject = false;
};

class Reader {
 public:
  simdjson::error_code Parse(std::string_view text, dom::element& root) {
    if (parser_.max_depth() != kParserDepth) {
      if (const auto code = parser_.allocate(text.size(), kParserDepth)) return code;
    }
    return parser_.parse(text.data(), text.size()).get(root);
  }

  // False when the nesting is too deep. `root` is an object or an array.
  bool Walk(const dom::element& root, JsonVisitor& visitor) {
    levels_.clear();
    if (!Enter(root, visitor)) return false;
    while (!levels_.empty()) {
      if (!(levels_.back().isObject ? TellMembers(visitor) : TellElements(visitor))) return false;
    }
    return true;
  }

  bool IsWorthKeeping() const { return parser_.capacity() <= kMaximumKeptCapacity; }

 private:
  // Tell what is left of the innermost container: up to the next container in it, which is
  // entered, or to its end. False when that is nested too deep.
  bool TellMembers(JsonVisitor& visitor) {
    Level& level = levels_.back();
    for (auto member = level.member; member != level.memberEnd;) {
      visitor.Key(member.key());
      const dom::element value = member.value();
      ++member;
      if (!TellScalar(value, visitor)) {
        level.member = member;
        return Enter(value, visitor);
      }
    }
    levels_.pop_back();
    visitor.EndObject();
    return true;
  }

  bool TellElements(JsonVisitor& visitor) {
    Level& level = levels_.back();
    for (auto element = level.element; element != level.elementEnd;) {
      const dom::element value = *element;
      ++element;
      if (!TellScalar(value, visitor)) {
        level.element = element;
        return Enter(value, visitor);
      }
    }
    levels_.pop_back();
    visitor.EndArray();
    return true;
  }

  // False for a container.
  static bool TellScalar(const dom::element& element, JsonVisitor& visitor) {
    switch (element.type()) {
      case dom::element_type::OBJECT:
      case dom::element_type::ARRAY:
        return false;
      case dom::element_type::STRING:
        visitor.String(element.get_string().value_unsafe());
        return true;
      case dom::element_type::INT64:
        visitor.Integer(element.get_int64().value_unsafe());
        return true;
      case dom::element_type::UINT64:
        visitor.Double(static_cast<double>(element.get_uint64().value_unsafe()));
        return true;
      case dom::element_type::DOUBLE:
        visitor.Double(element.get_double().value_unsafe());
        return true;
      case dom::element_type::BOOL:
        visitor.Boolean(element.get_bool().value_unsafe());
        return true;
      case dom::element_type::NULL_VALUE:
        visitor.Null();
        return true;
    }
    return true;
  }

  // False when the nesting is too deep.
  bool Enter(const dom::element& container, JsonVisitor& visitor) {
    Level& level = levels_.emplace_back();
    level.isObject = container.is_object();
    if (level.isObject) {
      visitor.BeginObject();
      const dom::object object = container.get_object().value_unsafe();
      level.member = object.begin();
      level.memberEnd = object.end();
    } else {
      visitor.BeginArray();
      const dom::array array = container.get_array().value_unsafe();
      level.element = array.begin();
      level.elementEnd = array.end();
    }
    return levels_.size() <= JsonSerialization::kMaximumDepth;
  }

  dom::parser parser_;
  std::vector<Level> levels_;
};

bool IsIntegerBeyond64Bits(std::string_view number) {
  std::int64_t value = 0;
  const char* const end = number.data() + number.size();
  const auto [stop, code] = std::from_chars(number.data(), end, value);
  return code == std::errc::result_out_of_range && stop == end;
}

// The text with an exponent of zero behind each integer that does not fit 64 signed bits, outside
// strings: simdjson refuses such integers, but reads the same digits as a double. What is wrong
// with a text stays wrong.
std::string WithLongIntegersAsDoubles(std::string_view text) {
  std::string result;
  std::size_t copied = 0;
  std::size_t at = 0;
  while ((at = text.find_first_of("\"-0123456789", at)) != std::string_view::npos) {
    if (text[at] == '"') {
      ++at;
      while (at < text.size() && text[at] != '"') at += text[at] == '\\' ? 2 : 1;
      ++at;
      continue;
    }
    const std::size_t end = std::min(text.find_first_not_of("+-.0123456789Ee", at), text.size());
    if (IsIntegerBeyond64Bits(text.substr(at, end - at))) {
      result.append(text, copied, end - copied).append("e0");
      copied = end;
    }
    at = end;
  }
  result.append(text, copied);
  return result;
}

JsonRefusal RefusalOf(simdjson::error_code code) {
  switch (code) {
    case simdjson::CAPACITY:
      return JsonRefusal::TooLarge;
    case simdjson::MEMALLOC:
      return JsonRefusal::NoMemory;
    case simdjson::NUMBER_ERROR:
      return JsonRefusal::Number;
    default:
      return JsonRefusal::Other;
  }
}

}  // namespace

std::optional<std::string> ReadJsonText(std::string_view text, JsonVisitor& visitor) {
  if (text.empty()) return DescribeJsonFault(text, JsonRefusal::Other);
  const ThreadLease<Reader> reader;
  dom::element root;
  simdjson::error_code code = reader->Parse(text, root);
  if (code == simdjson::NUMBER_ERROR) code = reader->Parse(WithLongIntegersAsDoubles(text), root);
  if (code != simdjson::SUCCESS) return DescribeJsonFault(text, RefusalOf(code));
  if (!root.is_object() && !root.is_array()) {
    return DescribeJsonFault(text, JsonRefusal::ScalarRoot);
  }
  if (!reader->Walk(root, visitor)) return DescribeJsonFault(text, JsonRefusal::Other);
  return std::nullopt;
}

void PrepareJsonReader() {
  // A name can be had only from what has been made.
  static_cast<void>(simdjson::get_active_implementation()->name());
}

}  // namespace Platform
