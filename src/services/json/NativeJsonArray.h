#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "VelmoraCore/JsonArray.h"
#include "VelmoraCore/Object.h"
#include "VelmoraCore/Variant.h"
#include "services/json/JsonKindCheck.h"

namespace Velmora {

// A JSON array over the platform's JSON. Make it with std::make_shared.
//
// Elements are variants. Null elements and empty strings are kept, but ToString fails where there
// are any: the platform has no value for them.
class NativeJsonArray : public Object, public virtual JsonArray {
 public:
  // Throws an SdkError "json.serialization_error" when `json`, up to its first zero byte, is not
  // the text of an array.
  explicit NativeJsonArray(const std::string& json);

  explicit NativeJsonArray(const std::vector<std::shared_ptr<Variant>>& values);

  JsonType GetType(std::uint32_t index) const override;

  // Objects and arrays of another class than the platform's change nothing.
  std::shared_ptr<JsonArray> PutJsonObject(const std::shared_ptr<JsonObject>& value) override;
  std::shared_ptr<JsonArray> PutJsonObject(std::uint32_t index,
                                           const std::shared_ptr<JsonObject>& value) override;
  std::shared_ptr<JsonArray> PutJsonArray(const std::shared_ptr<JsonArray>& value) override;
  std::shared_ptr<JsonArray> PutJsonArray(std::uint32_t index,
                                          const std::shared_ptr<JsonArray>& value) override;
  std::shared_ptr<JsonArray> PutInt(std::int32_t value) override;
  std::shared_ptr<JsonArray> PutInt(std::uint32_t index, std::int32_t value) override;
  std::shared_ptr<JsonArray> PutLong(std::int64_t value) override;
  std::shared_ptr<JsonArray> PutLong(std::uint32_t index, std::int64_t value) override;
  std::shared_ptr<JsonArray> PutDouble(double value) override;
  std::shared_ptr<JsonArray> PutDouble(std::uint32_t index, double value) override;
  std::shared_ptr<JsonArray> PutString(const std::string& value) override;
  std::shared_ptr<JsonArray> PutString(std::uint32_t index, const std::string& value) override;
  std::shared_ptr<JsonArray> PutBoolean(bool value) override;
  std::shared_ptr<JsonArray> PutBoolean(std::uint32_t index, bool value) override;

  std::shared_ptr<JsonObject> GetJsonObject(std::uint32_t index) const override;
  std::shared_ptr<JsonArray> GetJsonArray(std::uint32_t index) const override;
  std::int32_t GetInt(std::uint32_t index) const override;
  std::int64_t GetLong(std::uint32_t index) const override;
  double GetDouble(std::uint32_t index) const override;
  std::string GetString(std::uint32_t index) const override;
  bool GetBoolean(std::uint32_t index) const override;

  std::shared_ptr<JsonObject> OptJsonObject(std::uint32_t index) const override;
  std::shared_ptr<JsonArray> OptJsonArray(std::uint32_t index) const override;
  std::int32_t OptInt(std::uint32_t index, std::int32_t fallback) const override;
  std::int64_t OptLong(std::uint32_t index, std::int64_t fallback) const override;
  double OptDouble(std::uint32_t index, double fallback) const override;
  std::string OptString(std::uint32_t index, const std::string& fallback) const override;
  bool OptBoolean(std::uint32_t index, bool fallback) const override;

  std::size_t Length() const override;
  std::string ToString() const override;

  // Holds until the array is changed.
  const VariantVector& Elements() const { return elements_; }

 private:
  // The element, which passes `check`.
  const Variant& Get(std::uint32_t index, JsonKindCheck check, int line) const;

  // Puts the value at the end, or before the element of that index; nowhere beyond the end. An
  // empty pointer changes nothing.
  std::shared_ptr<JsonArray> Append(std::shared_ptr<Variant> value);
  std::shared_ptr<JsonArray> Insert(std::size_t index, std::shared_ptr<Variant> value);

  VariantVector elements_;
};

}  // namespace Velmora
