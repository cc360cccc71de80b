#include "services/json/NativeJsonArray.h"

#include <iterator>
#include <utility>

#include "VelmoraCore/ErrorCodes.h"
#include "VelmoraCore/SdkError.h"
#include "VelmoraCore/TryCatch.h"
#include "services/json/JsonText.h"
#include "services/json/KRVJsonType.h"
#include "services/json/NativeJsonObject.h"

namespace Velmora {
namespace {

[[noreturn]] void Throw(const char* code, const std::string& message, int line) {
  throw SdkError(code, message, DebugInfo("src/services/json/NativeJsonArray", line));
}

VariantVector ParseElements(const std::string& json) {
  std::string problem;
  if (auto elements = ReadJsonArray(json, problem)) return std::move(*elements);
  // The wording is that of objects; it is matched as text.
  Throw(ErrorCodes::kJsonSerializationError,
        "Failed to create json object for string: " + json + " error: " + problem, __LINE__);
}

// A copy of what the object or array holds now; empty when it is not the platform's.
std::shared_ptr<Variant> VariantOf(const std::shared_ptr<JsonObject>& value) {
  const auto* object = dynamic_cast<const NativeJsonObject*>(value.get());
  return object != nullptr ? Variant::FromVariantMap(object->Members()) : nullptr;
}

std::shared_ptr<Variant> VariantOf(const std::shared_ptr<JsonArray>& value) {
  const auto* array = dynamic_cast<const NativeJsonArray*>(value.get());
  return array != nullptr ? Variant::FromVariantVector(array->Elements()) : nullptr;
}

}  // namespace

NativeJsonArray::NativeJsonArray(const std::string& json) : elements_(ParseElements(json)) {}

NativeJsonArray::NativeJsonArray(const std::vector<std::shared_ptr<Variant>>& values)
    : elements_(values) {}

JsonType NativeJsonArray::GetType(std::uint32_t index) const {
  return KRVJsonType::Get(Get(index, CheckJsonType, __LINE__).GetKind());
}

std::shared_ptr<JsonArray> NativeJsonArray::PutJsonObject(
    const std::shared_ptr<JsonObject>& value) {
  return Append(VariantOf(value));
}

std::shared_ptr<JsonArray> NativeJsonArray::PutJsonObject(
    std::uint32_t index, const std::shared_ptr<JsonObject>& value) {
  return Insert(index, VariantOf(value));
}

std::shared_ptr<JsonArray> NativeJsonArray::PutJsonArray(const std::shared_ptr<JsonArray>& value) {
  return Append(VariantOf(value));
}

std::shared_ptr<JsonArray> NativeJsonArray::PutJsonArray(std::uint32_t index,
                                                         const std::shared_ptr<JsonArray>& value) {
  return Insert(index, VariantOf(value));
}

std::shared_ptr<JsonArray> NativeJsonArray::PutInt(std::int32_t value) {
  return Append(Variant::FromInteger(value));
}

std::shared_ptr<JsonArray> NativeJsonArray::PutInt(std::uint32_t index, std::int32_t value) {
  return Insert(index, Variant::FromInteger(value));
}

std::shared_ptr<JsonArray> NativeJsonArray::PutLong(std::int64_t value) {
  return Append(Variant::FromLong(value));
}

std::shared_ptr<JsonArray> NativeJsonArray::PutLong(std::uint32_t index, std::int64_t value) {
  return Insert(index, Variant::FromLong(value));
}

std::shared_ptr<JsonArray> NativeJsonArray::PutDouble(double value) {
  return Append(Variant::FromDouble(value));
}

std::shared_ptr<JsonArray> NativeJsonArray::PutDouble(std::uint32_t index, double value) {
  return Insert(index, Variant::FromDouble(value));
}

std::shared_ptr<JsonArray> NativeJsonArray::PutString(const std::string& value) {
  return Append(Variant::FromString(value));
}

std::shared_ptr<JsonArray> NativeJsonArray::PutString(std::uint32_t index,
                                                      const std::string& value) {
  return Insert(index, Variant::FromString(value));
}

std::shared_ptr<JsonArray> NativeJsonArray::PutBoolean(bool value) {
  return Append(Variant::FromBoolean(value));
}

std::shared_ptr<JsonArray> NativeJsonArray::PutBoolean(std::uint32_t index, bool value) {
  return Insert(index, Variant::FromBoolean(value));
}

std::shared_ptr<JsonObject> NativeJsonArray::GetJsonObject(std::uint32_t index) const {
  return std::make_shared<NativeJsonObject>(Get(index, CheckJsonObject, __LINE__).GetVariantMap());
}

std::shared_ptr<JsonArray> NativeJsonArray::GetJsonArray(std::uint32_t index) const {
  return std::make_shared<NativeJsonArray>(Get(index, CheckJsonArray, __LINE__).GetVariantVector());
}

std::int32_t NativeJsonArray::GetInt(std::uint32_t index) const {
  return Get(index, CheckJsonNumber, __LINE__).GetInteger();
}

std::int64_t NativeJsonArray::GetLong(std::uint32_t index) const {
  return Get(index, CheckJsonNumber, __LINE__).GetLong();
}

double NativeJsonArray::GetDouble(std::uint32_t index) const {
  return Get(index, CheckJsonNumber, __LINE__).GetDouble();
}

std::string NativeJsonArray::GetString(std::uint32_t index) const {
  return Get(index, CheckJsonString, __LINE__).GetString();
}

bool NativeJsonArray::GetBoolean(std::uint32_t index) const {
  return Get(index, CheckJsonBoolean, __LINE__).GetBoolean();
}

std::shared_ptr<JsonObject> NativeJsonArray::OptJsonObject(std::uint32_t index) const {
  std::shared_ptr<JsonObject> result;
  TrySwallow([&] { result = GetJsonObject(index); });
  return result;
}

std::shared_ptr<JsonArray> NativeJsonArray::OptJsonArray(std::uint32_t index) const {
  std::shared_ptr<JsonArray> result;
  TrySwallow([&] { result = GetJsonArray(index); });
  return result;
}

std::int32_t NativeJsonArray::OptInt(std::uint32_t index, std::int32_t fallback) const {
  std::int32_t result = fallback;
  TrySwallow([&] { result = GetInt(index); });
  return result;
}

std::int64_t NativeJsonArray::OptLong(std::uint32_t index, std::int64_t fallback) const {
  std::int64_t result = fallback;
  TrySwallow([&] { result = GetLong(index); });
  return result;
}

double NativeJsonArray::OptDouble(std::uint32_t index, double fallback) const {
  double result = fallback;
  TrySwallow([&] { result = GetDouble(index); });
  return result;
}

std::string NativeJsonArray::OptString(std::uint32_t index, const std::string& fallback) const {
  std::string result = fallback;
  TrySwallow([&] { result = GetString(index); });
  return result;
}

bool NativeJsonArray::OptBoolean(std::uint32_t index, bool fallback) const {
  bool result = fallback;
  TrySwallow([&] { result = GetBoolean(index); });
  return result;
}

std::size_t NativeJsonArray::Length() const { return elements_.size(); }

std::string NativeJsonArray::ToString() const {
  std::string problem;
  if (auto text = WriteJson(elements_, problem)) return std::move(*text);
  Throw(ErrorCodes::kJsonSerializationError,
        "Failed to convert JSON array into a string:" + problem, __LINE__);
}

const Variant& NativeJsonArray::Get(std::uint32_t index, JsonKindCheck check, int line) const {
  if (index >= elements_.size()) {
    Throw(ErrorCodes::kJsonIndexNotFound, "index: " + std::to_string(index), line);
  }
  const std::shared_ptr<Variant>& element = elements_[index];
  if (const char* code = check(element)) Throw(code, "index: " + std::to_string(index), line);
  return *element;
}

std::shared_ptr<JsonArray> NativeJsonArray::Append(std::shared_ptr<Variant> value) {
  return Insert(elements_.size(), std::move(value));
}

std::shared_ptr<JsonArray> NativeJsonArray::Insert(std::size_t index,
                                                   std::shared_ptr<Variant> value) {
  if (value && index <= elements_.size()) {
    elements_.insert(std::next(elements_.begin(), static_cast<std::ptrdiff_t>(index)),
                     std::move(value));
  }
  return ObjectToSharedPtr(static_cast<JsonArray&>(*this));
}

}  // namespace Velmora
