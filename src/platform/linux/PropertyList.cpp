#include "platform/linux/PropertyList.h"

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <plist/plist.h>

#include "QEXCore_iOS/Platform/Date.h"
#include "QEXCore_iOS/Platform/Utf8.h"
#include "platform/linux/BinaryPropertyListCheck.h"

namespace Platform {
namespace {

constexpr double kSecondsTo2001 = 978'307'200;  // where the dates of property lists begin
constexpr std::size_t kMaximumXmlContainers = 4096;

struct Free {
  void operator()(void* memory) const { std::free(memory); }
};
using Iterator = std::unique_ptr<void, Free>;
using Text = std::unique_ptr<char, Free>;

struct FreeTree {
  void operator()(void* root) const { plist_free(root); }
};
using Tree = std::unique_ptr<void, FreeTree>;

std::size_t CountOf(std::string_view needle, std::string_view text) {
  std::size_t count = 0;
  for (std::size_t at = text.find(needle); at != std::string_view::npos;
       at = text.find(needle, at + needle.size())) {
    ++count;
  }
  return count;
}

// The library frees trees by recursion. No tree is deeper than it has containers, however the
// text is cut into tags, comments and the like.
bool IsHarmlessXml(std::string_view bytes) {
  return CountOf("<dict", bytes) + CountOf("<array", bytes) <= kMaximumXmlContainers;
}

// The library's calls for one known format each have kept their parameters through all its
// versions; the one for any format has not, and in newer versions takes more formats than these.
Tree Parse(std::string_view bytes) {
  const auto size = static_cast<std::uint32_t>(bytes.size());
  plist_t root = nullptr;
  if (bytes.starts_with("bplist")) {
    if (!IsHarmlessBinaryPropertyList(bytes, kMaximumPropertyListDepth)) return nullptr;
    plist_from_bin(bytes.data(), size, &root);
  } else {
    if (!IsHarmlessXml(bytes)) return nullptr;
    plist_from_xml(bytes.data(), size, &root);
  }
  return Tree(root);
}

Value TextValue(plist_t node) {
  std::uint64_t length = 0;
  const char* text = plist_get_string_ptr(node, &length);
  if (text == nullptr) return {};
  const std::string_view bytes(text, static_cast<std::size_t>(length));
  return IsValidUtf8(bytes) ? Value(bytes) : Value();
}

Value IntegerValue(plist_t node) {
  std::uint64_t number = 0;
  plist_get_uint_val(node, &number);
  return Value::Number(NumberType::SInt64, static_cast<std::int64_t>(number));
}

Value UidValue(plist_t node) {
  std::uint64_t number = 0;
  plist_get_uid_val(node, &number);
  return Value::Number(NumberType::SInt64, static_cast<std::int64_t>(number));
}

Value RealValue(plist_t node) {
  double number = 0;
  plist_get_real_val(node, &number);
  return number;
}

Value BooleanValue(plist_t node) {
  std::uint8_t boolean = 0;
  plist_get_bool_val(node, &boolean);
  return boolean != 0;
}

Value DataValue(plist_t node) {
  std::uint64_t length = 0;
  const char* data = plist_get_data_ptr(node, &length);
  if (data == nullptr) return Value::FromData({});
  return Value::FromData(std::vector<std::uint8_t>(data, data + length));
}

Value DateValue(plist_t node) {
  std::int32_t seconds = 0;
  std::int32_t microseconds = 0;
  plist_get_date_val(node, &seconds, &microseconds);
  const double fraction = (seconds < 0 ? -1e-6 : 1e-6) * microseconds;
  return Value::FromObject(std::make_shared<Date>(kSecondsTo2001 + seconds + fraction));
}

std::optional<Value> ToValue(plist_t node, int depthLeft);

std::optional<Value> ArrayValue(plist_t node, int depthLeft) {
  Value array = Value::Array();
  plist_array_iter start = nullptr;
  plist_array_new_iter(node, &start);
  const Iterator iterator(start);
  plist_t item = nullptr;
  for (plist_array_next_item(node, iterator.get(), &item); item != nullptr;
       plist_array_next_item(node, iterator.get(), &item)) {
    std::optional<Value> value = ToValue(item, depthLeft);
    if (!value) return std::nullopt;
    if (!value->IsAbsent()) array.Append(std::move(*value));
  }
  return array;
}

std::optional<Value> DictionaryValue(plist_t node, int depthLeft) {
  Value dictionary = Value::Dictionary();
  plist_dict_iter start = nullptr;
  plist_dict_new_iter(node, &start);
  const Iterator iterator(start);
  while (true) {
    char* keyText = nullptr;
    plist_t item = nullptr;
    plist_dict_next_item(node, iterator.get(), &keyText, &item);
    const Text key(keyText);
    if (item == nullptr) return dictionary;
    std::optional<Value> value = ToValue(item, depthLeft);
    if (!value) return std::nullopt;
    if (key && IsValidUtf8(key.get())) dictionary.Set(key.get(), std::move(*value));
  }
}

// Nothing when the tree is deeper than `depthLeft`.
std::optional<Value> ToValue(plist_t node, int depthLeft) {
  if (depthLeft == 0) return std::nullopt;
  switch (plist_get_node_type(node)) {
    case PLIST_STRING:
      return TextValue(node);
    case PLIST_UINT:
      return IntegerValue(node);
    case PLIST_REAL:
      return RealValue(node);
    case PLIST_BOOLEAN:
      return BooleanValue(node);
    case PLIST_DATE:
      return DateValue(node);
    case PLIST_DATA:
      return DataValue(node);
    case PLIST_UID:
      return UidValue(node);
    case PLIST_ARRAY:
      return ArrayValue(node, depthLeft - 1);
    case PLIST_DICT:
      return DictionaryValue(node, depthLeft - 1);
    default:
      return Value();
  }
}

}  // namespace

Value ParsePropertyList(std::string_view bytes) {
  if (bytes.size() > kMaximumPropertyListSize) return {};
  const Tree tree = Parse(bytes);
  return tree ? ToValue(tree.get(), kMaximumPropertyListDepth).value_or(Value()) : Value();
}

}  // namespace Platform
