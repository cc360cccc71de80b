#include "services/datastore/NativeDataStore.h"

#include <optional>

#include "VelmoraCore/Log.h"
#include "interop/AppInfo.h"
#include "interop/NumberConversion.h"
#include "interop/StringCollections.h"
#include "interop/StringConversion.h"

namespace Velmora {
namespace {

using Platform::NumberType;
using Platform::Value;

std::string PrefixOf(const std::string& name) {
  const std::optional<std::string> platformName = ToNSString(name);
  return platformName ? "Korvo." + *platformName + "." : "Korvo.";
}

// Unlike elsewhere an empty text counts: it is stored as such instead of removing the entry.
Value StringValue(const std::string& text) {
  if (text.empty() || text.front() == '\0') return Value("");
  return ToNSStringValue(text);
}

}  // namespace

NativeDataStore::NativeDataStore(const std::string& name)
    : Object("DataStore"),
      name_(name),
      prefix_(PrefixOf(name)),
      userDefaults_(AppInfo::GetUserDefaults()) {}

void NativeDataStore::SetInt(const std::string& key, std::int32_t value) {
  Put(key, ToNSNumber(value));
}

std::int32_t NativeDataStore::GetInt(const std::string& key, std::int32_t fallback) const {
  const Value object = Get(key);
  return isTypeOfLong(object) ? ToInt32(object) : fallback;
}

void NativeDataStore::SetString(const std::string& key, const std::string& value) {
  Put(key, StringValue(value));
}

std::string NativeDataStore::GetString(const std::string& key, const std::string& fallback) const {
  const Value object = Get(key);
  return object.IsString() ? ToCppString(object) : fallback;
}

void NativeDataStore::SetDouble(const std::string& key, double value) {
  Put(key, ToNSNumber(value));
}

double NativeDataStore::GetDouble(const std::string& key, double fallback) const {
  const Value object = Get(key);
  return isTypeOfDouble(object) ? ToDouble(object) : fallback;
}

void NativeDataStore::SetLong(const std::string& key, std::int64_t value) {
  Put(key, ToNSNumber(value));
}

std::int64_t NativeDataStore::GetLong(const std::string& key, std::int64_t fallback) const {
  const Value object = Get(key);
  return isTypeOfLong(object) ? ToInt64(object) : fallback;
}

void NativeDataStore::SetFloat(const std::string& key, float value) { Put(key, ToNSNumber(value)); }

float NativeDataStore::GetFloat(const std::string& key, float fallback) const {
  const Value object = Get(key);
  return isTypeOfDouble(object) ? ToFloat(object) : fallback;
}

void NativeDataStore::SetBoolean(const std::string& key, bool value) {
  Put(key, ToNSNumber(value));
}

bool NativeDataStore::GetBoolean(const std::string& key, bool fallback) const {
  const Value object = Get(key);
  return isTypeOfBool(object) ? ToBool(object) : fallback;
}

void NativeDataStore::SetVector(const std::string& key, const std::vector<std::string>& value) {
  Put(key, ToNSArray(value));
}

std::vector<std::string> NativeDataStore::GetVector(const std::string& key) const {
  const Value object = Get(key);
  return object.IsArray() ? ToStringVector(object) : std::vector<std::string>();
}

void NativeDataStore::SetMap(const std::string& key,
                             const std::map<std::string, std::string>& value) {
  Put(key, ToNSDictionary(value));
}

std::map<std::string, std::string> NativeDataStore::GetMap(const std::string& key) const {
  const Value object = Get(key);
  return object.IsDictionary() ? ToStringMap(object) : std::map<std::string, std::string>();
}

bool NativeDataStore::Contains(const std::string& key) const { return !Get(key).IsAbsent(); }

void NativeDataStore::Remove(const std::string& key) {
  if (key.empty()) {
    Log::Debug(LogTag(), "datastore %s - failed to remove key (was empty)", name_.c_str());
    return;
  }
  userDefaults_->RemoveObject(prefix_ + key);
}

void NativeDataStore::RemoveAll() { userDefaults_->RemoveObjectsWithPrefix(prefix_); }

void NativeDataStore::Put(const std::string& key, const Value& value) {
  if (key.empty()) {
    Log::Debug(LogTag(), "datastore %s - failed to put value (key was empty)", name_.c_str());
    return;
  }
  userDefaults_->SetObject(prefix_ + key, value);
}

Value NativeDataStore::Get(const std::string& key) const {
  if (key.empty()) {
    Log::Debug(LogTag(), "datastore %s - failed to get value (key was empty)", name_.c_str());
    return {};
  }
  return userDefaults_->ObjectForKey(prefix_ + key);
}

bool NativeDataStore::isTypeOfLong(const Value& object) {
  switch (object.StorageType().value_or(NumberType::Char)) {
    case NumberType::SInt8:
    case NumberType::SInt16:
    case NumberType::SInt32:
    case NumberType::SInt64:
    case NumberType::Short:
    case NumberType::Int:
    case NumberType::Long:
    case NumberType::LongLong:
    case NumberType::NSInteger:
      return true;
    default:
      return false;
  }
}

bool NativeDataStore::isTypeOfDouble(const Value& object) {
  const std::optional<NumberType> type = object.StorageType();
  return type.has_value() && Platform::IsFloatingPoint(*type);
}

bool NativeDataStore::isTypeOfBool(const Value& object) { return object.IsBoolean(); }

}  // namespace Velmora
