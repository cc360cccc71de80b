#include "interop/StringCollections.h"

#include <utility>

#include "interop/StringConversion.h"

namespace Velmora {

Platform::Value ToNSDictionary(const StringMap& map) {
  Platform::Value dictionary = Platform::Value::Dictionary(map.size());
  for (const auto& [key, text] : map) {
    Platform::Value platformKey = ToNSStringValue(key);
    if (!platformKey.IsAbsent()) dictionary.Set(std::move(platformKey), ToNSStringValue(text));
  }
  return dictionary;
}

Platform::Value ToNSArray(const std::vector<std::string>& vector) {
  std::vector<Platform::Value> items;
  items.reserve(vector.size());
  for (const std::string& text : vector) items.push_back(ToNSStringValue(text));
  return Platform::Value::FromVector(std::move(items));
}

StringMap ToStringMap(const Platform::Value& dictionary) {
  StringMap map;
  for (const auto& [key, value] : dictionary.Entries()) {
    if (key.IsString() && value.IsString()) map[ToCppString(key)] = ToCppString(value);
  }
  return map;
}

std::vector<std::string> ToStringVector(const Platform::Value& array) {
  std::vector<std::string> vector;
  vector.reserve(array.Items().size());
  for (const Platform::Value& item : array.Items()) vector.push_back(ToCppString(item));
  return vector;
}

}  // namespace Velmora
