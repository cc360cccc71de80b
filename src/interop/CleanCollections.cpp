#include "interop/CleanCollections.h"

#include <utility>

namespace Velmora {
namespace {

using Platform::Value;

bool IsValidEntry(const Platform::DictionaryEntry& entry) {
  return entry.key.IsString() && entry.value.IsString() && !entry.key.AsStringView().empty();
}

}  // namespace

Value CleanDictionary(const Value& dictionary, Value* invalidEntries) {
  Value cleaned = dictionary.IsDictionary() ? dictionary : Value::Dictionary();
  Value invalid = Value::Dictionary();
  for (const Platform::DictionaryEntry& entry : dictionary.Entries()) {
    if (IsValidEntry(entry)) continue;
    invalid.Set(entry.key, entry.value);
    cleaned.Remove(entry.key);
  }
  if (invalidEntries != nullptr) *invalidEntries = std::move(invalid);
  return cleaned;
}

Value CleanArray(const Value& array, Value* invalidElements) {
  Value cleaned = Value::Array();
  Value invalid = Value::Array();
  for (const Value& item : array.Items()) {
    (item.IsString() ? cleaned : invalid).Append(item);
  }
  if (invalidElements != nullptr) *invalidElements = std::move(invalid);
  return cleaned;
}

}  // namespace Velmora
