#include "services/json/NativeJsonObject.h"

#include <utility>

#include "VelmoraCore/ErrorCodes.h"
#include "VelmoraCore/SdkError.h"
#include "VelmoraCore/TryCatch.h"
#include "services/json/JsonText.h"
#include "services/json/KRVJsonType.h"
#include "services/json/NativeJsonArray.h"

namespace Velmora {
namespace {

[[noreturn]] void Throw(const char* code, const std::string& message, int line) {
  throw SdkError(code, message, DebugInfo("src/services/json/NativeJsonObject", line));
}

VariantMap ParseMembers(const std::string& json) {
  std::string problem;
  if (auto members = ReadJsonObject(json, problem)) return std::move(*members);
  Throw(ErrorCodes::kJsonSerializationError,
        "Failed to create json object for string: " + json + " error: " + problem, __LINE__);
}

VariantMap StringMembers(const StringMap& map) {
  VariantMap members;
  for (const auto& [key, text] : map) {
    members.emplace_hint(members.end(), key, Variant::FromString(text));
  }
  return members;
}

}  // namespace

NativeJsonObject::NativeJsonObject(const std::string& json) : members_(ParseMembers(json)) {}

NativeJsonObject::NativeJsonObject(const std::map<std::string, std::string>& map)
    : members_(StringMembers(map)) {}

NativeJsonObject::NativeJsonObject(const std::map<std::string, std::shared_ptr<Variant>>& map)
    : members_(map) {}

JsonType NativeJsonObject::GetType(const std::string& key) const {
  return KRVJsonType::Get(Get(key, CheckJsonType, __LINE__).GetKind());
}

std::shared_ptr<JsonObject> NativeJsonObject::GetJsonObject(const std::string& key) const {
  return std::make_shared<NativeJsonObject>(Get(key, CheckJsonObject, __LINE__).GetVariantMap());
}

std::shared_ptr<JsonArray> NativeJsonObject::GetJsonArray(const std::string& key) const {
  return std::make_shared<NativeJsonArray>(Get(key, CheckJsonArray, __LINE__).GetVariantVector());
}

std::int32_t NativeJsonObject::GetInt(const std::string& key) const {
  return Get(key, CheckJsonNumber, __LINE__).GetInteger();
}

std::int64_t NativeJsonObject::GetLong(const std::string& key) const {
  return Get(key, CheckJsonNumber, __LINE__).GetLong();
}

double NativeJsonObject::GetDouble(const std::string& key) const {
  return Get(key, CheckJsonNumber, __LINE__).GetDouble();
}

std::string NativeJsonObject::GetString(const std::string& key) const {
  return Get(key, CheckJsonString, __LINE__).GetString();
}

bool NativeJsonObject::GetBoolean(const std::string& key) const {
  return Get(key, CheckJsonBoolean, __LINE__).GetBoolean();
}

std::shared_ptr<JsonObject> NativeJsonObject::PutJsonObject(
    const std::string& key, const std::shared_ptr<JsonObject>& value) {
  const auto* object = dynamic_cast<const NativeJsonObject*>(value.get());
  if (object == nullptr) return ObjectToSharedPtr(static_cast<JsonObject&>(*this));
  return Put(key, Variant::FromVariantMap(object->Members()));
}

std::shared_ptr<JsonObject> NativeJsonObject::PutJsonArray(
    const std::string& key, const std::shared_ptr<JsonArray>& value) {
  const auto* array = dynamic_cast<const NativeJsonArray*>(value.get());
  if (array == nullptr) return ObjectToSharedPtr(static_cast<JsonObject&>(*this));
  return Put(key, Variant::FromVariantVector(array->Elements()));
}

std::shared_ptr<JsonObject> NativeJsonObject::PutInt(const std::string& key, std::int32_t value) {
  return Put(key, Variant::FromInteger(value));
}

std::shared_ptr<JsonObject> NativeJsonObject::PutLong(const std::string& key, std::int64_t value) {
  return Put(key, Variant::FromLong(value));
}

std::shared_ptr<JsonObject> NativeJsonObject::PutDouble(const std::string& key, double value) {
  return Put(key, Variant::FromDouble(value));
}

std::shared_ptr<JsonObject> NativeJsonObject::PutString(const std::string& key,
                                                        const std::string& value) {
  return Put(key, Variant::FromString(value));
}

std::shared_ptr<JsonObject> NativeJsonObject::PutBoolean(const std::string& key, bool value) {
  return Put(key, Variant::FromBoolean(value));
}

std::shared_ptr<JsonObject> NativeJsonObject::OptJsonObject(const std::string& key) const {
  std::shared_ptr<JsonObject> result;
  TrySwallow([&] { result = GetJsonObject(key); });
  return result;
}

std::shared_ptr<JsonArray> NativeJsonObject::OptJsonArray(const std::string& key) const {
  std::shared_ptr<JsonArray> result;
  TrySwallow([&] { result = GetJsonArray(key); });
  return result;
}

std::int32_t NativeJsonObject::OptInt(const std::string& key, std::int32_t fallback) const {
  std::int32_t result = fallback;
  TrySwallow([&] { result = GetInt(key); });
  return result;
}

std::int64_t NativeJsonObject::OptLong(const std::string& key, std::int64_t fallback) const {
  std::int64_t result = fallback;
  TrySwallow([&] { result = GetLong(key); });
  return result;
}

double NativeJsonObject::OptDouble(const std::string& key, double fallback) const {
  double result = fallback;
  TrySwallow([&] { result = GetDouble(key); });
  return result;
}

std::string NativeJsonObject::OptString(const std::string& key, const std::string& fallback) const {
  std::string result = fallback;
  TrySwallow([&] { result = GetString(key); });
  return result;
}

bool NativeJsonObject::OptBoolean(const std::string& key, bool fallback) const {
  bool result = fallback;
  TrySwallow([&] { result = GetBoolean(key); });
  return result;
}

void NativeJsonObject::Keys(std::vector<std::string>& out) const {
  for (const auto& [key, value] : members_) out.push_back(key);
}

std::size_t NativeJsonObject::Length() const { return members_.size(); }

void NativeJsonObject::Remove(const std::string& key) { members_.erase(key); }

std::string NativeJsonObject::ToString() const {
  std::string problem;
  if (auto text = WriteJson(members_, problem)) return std::move(*text);
  Throw(ErrorCodes::kJsonSerializationError,
        "Failed to convert JSON Object into a string:" + problem, __LINE__);
}

bool NativeJsonObject::Contains(const std::string& key) const { return members_.contains(key); }

const Variant& NativeJsonObject::Get(const std::string& key, JsonKindCheck check, int line) const {
  const auto member = members_.find(key);
  if (member == members_.end()) Throw(ErrorCodes::kJsonKeyNotFound, "key: " + key, line);
  if (const char* code = check(member->second)) Throw(code, "key: " + key, line);
  return *member->second;
}

std::shared_ptr<JsonObject> NativeJsonObject::Put(const std::string& key,
                                                  std::shared_ptr<Variant> value) {
  members_.insert_or_assign(key, std::move(value));
  return ObjectToSharedPtr(static_cast<JsonObject&>(*this));
}

}  // namespace Velmora
