#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "VelmoraCore/Export.h"
#include "VelmoraCore/JsonType.h"
#include "VelmoraCore/Object.h"

namespace Velmora {

class JsonObject;

// A JSON array that can be changed. Belongs to one thread at a time. Indices count from 0.
class VELMORA_CORE_API JsonArray : public virtual ObjectInterface {
 public:
  ~JsonArray() override;

  // Throws as the getters below do, and "json.object_unknown" for an element without a JSON type.
  virtual JsonType GetType(std::uint32_t index) const = 0;

  // Without an index, puts the value at the end. With one, inserts it before that element; an index
  // equal to Length() appends, a greater one changes nothing. Objects and arrays are copied; an
  // empty pointer changes nothing. Returns this array.
  virtual std::shared_ptr<JsonArray> PutJsonObject(const std::shared_ptr<JsonObject>& value) = 0;
  virtual std::shared_ptr<JsonArray> PutJsonObject(std::uint32_t index,
                                                   const std::shared_ptr<JsonObject>& value) = 0;
  virtual std::shared_ptr<JsonArray> PutJsonArray(const std::shared_ptr<JsonArray>& value) = 0;
  virtual std::shared_ptr<JsonArray> PutJsonArray(std::uint32_t index,
                                                  const std::shared_ptr<JsonArray>& value) = 0;
  virtual std::shared_ptr<JsonArray> PutInt(std::int32_t value) = 0;
  virtual std::shared_ptr<JsonArray> PutInt(std::uint32_t index, std::int32_t value) = 0;
  virtual std::shared_ptr<JsonArray> PutLong(std::int64_t value) = 0;
  virtual std::shared_ptr<JsonArray> PutLong(std::uint32_t index, std::int64_t value) = 0;
  virtual std::shared_ptr<JsonArray> PutDouble(double value) = 0;
  virtual std::shared_ptr<JsonArray> PutDouble(std::uint32_t index, double value) = 0;
  virtual std::shared_ptr<JsonArray> PutString(const std::string& value) = 0;
  virtual std::shared_ptr<JsonArray> PutString(std::uint32_t index, const std::string& value) = 0;
  virtual std::shared_ptr<JsonArray> PutBoolean(bool value) = 0;
  virtual std::shared_ptr<JsonArray> PutBoolean(std::uint32_t index, bool value) = 0;

  // The getters throw an SdkError: "json.index_not_found" beyond the end,
  // "json.value_not_numeric_type" (or string, boolean, object, array in the place of numeric) when
  // the element is of another type, and "json.jsonobject_is_null" when it holds nothing. Objects
  // and arrays come as copies. A number is read in any width, as Variant does.
  virtual std::shared_ptr<JsonObject> GetJsonObject(std::uint32_t index) const = 0;
  virtual std::shared_ptr<JsonArray> GetJsonArray(std::uint32_t index) const = 0;
  virtual std::int32_t GetInt(std::uint32_t index) const = 0;
  virtual std::int64_t GetLong(std::uint32_t index) const = 0;
  virtual double GetDouble(std::uint32_t index) const = 0;
  virtual std::string GetString(std::uint32_t index) const = 0;
  virtual bool GetBoolean(std::uint32_t index) const = 0;

  // As the getters, but with the fallback (an empty pointer for objects and arrays) in the place of
  // every error.
  virtual std::shared_ptr<JsonObject> OptJsonObject(std::uint32_t index) const = 0;
  virtual std::shared_ptr<JsonArray> OptJsonArray(std::uint32_t index) const = 0;
  virtual std::int32_t OptInt(std::uint32_t index, std::int32_t fallback) const = 0;
  virtual std::int64_t OptLong(std::uint32_t index, std::int64_t fallback) const = 0;
  virtual double OptDouble(std::uint32_t index, double fallback) const = 0;
  virtual std::string OptString(std::uint32_t index, const std::string& fallback) const = 0;
  virtual bool OptBoolean(std::uint32_t index, bool fallback) const = 0;

  // The number of elements.
  virtual std::size_t Length() const = 0;

  // The array as pretty-printed JSON. Throws an SdkError "json.serialization_error" when an element
  // cannot be written.
  virtual std::string ToString() const = 0;
};

}  // namespace Velmora
