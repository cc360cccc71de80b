#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "VelmoraCore/Export.h"
#include "VelmoraCore/JsonType.h"
#include "VelmoraCore/Object.h"

namespace Velmora {

class JsonArray;

// A JSON object that can be changed. Belongs to one thread at a time. Keys are ordered byte by
// byte.
class VELMORA_CORE_API JsonObject : public virtual ObjectInterface {
 public:
  ~JsonObject() override;

  // The getters throw an SdkError: "json.key_not_found" when there is no such member,
  // "json.object_unknown" when it has no JSON type, "json.value_not_numeric_type" (or string,
  // boolean, object, array in the place of numeric) when it is of another type, and
  // "json.jsonobject_is_null" when it holds nothing. A number is read in any width, as Variant
  // does.
  virtual JsonType GetType(const std::string& key) const = 0;

  // Objects and arrays come as copies: changing one does not change its parent.
  virtual std::shared_ptr<JsonObject> GetJsonObject(const std::string& key) const = 0;
  virtual std::shared_ptr<JsonArray> GetJsonArray(const std::string& key) const = 0;

  virtual std::int32_t GetInt(const std::string& key) const = 0;
  virtual std::int64_t GetLong(const std::string& key) const = 0;
  virtual double GetDouble(const std::string& key) const = 0;
  virtual std::string GetString(const std::string& key) const = 0;
  virtual bool GetBoolean(const std::string& key) const = 0;

  // Sets or replaces a member and returns this object. Objects and arrays are copied; an empty
  // pointer changes nothing.
  virtual std::shared_ptr<JsonObject> PutJsonObject(const std::string& key,
                                                    const std::shared_ptr<JsonObject>& value) = 0;
  virtual std::shared_ptr<JsonObject> PutJsonArray(const std::string& key,
                                                   const std::shared_ptr<JsonArray>& value) = 0;
  virtual std::shared_ptr<JsonObject> PutInt(const std::string& key, std::int32_t value) = 0;
  virtual std::shared_ptr<JsonObject> PutLong(const std::string& key, std::int64_t value) = 0;
  virtual std::shared_ptr<JsonObject> PutDouble(const std::string& key, double value) = 0;
  virtual std::shared_ptr<JsonObject> PutString(const std::string& key,
                                                const std::string& value) = 0;
  virtual std::shared_ptr<JsonObject> PutBoolean(const std::string& key, bool value) = 0;

  // As the getters, but with the fallback (an empty pointer for objects and arrays) in the place of
  // every error.
  virtual std::shared_ptr<JsonObject> OptJsonObject(const std::string& key) const = 0;
  virtual std::shared_ptr<JsonArray> OptJsonArray(const std::string& key) const = 0;
  virtual std::int32_t OptInt(const std::string& key, std::int32_t fallback) const = 0;
  virtual std::int64_t OptLong(const std::string& key, std::int64_t fallback) const = 0;
  virtual double OptDouble(const std::string& key, double fallback) const = 0;
  virtual std::string OptString(const std::string& key, const std::string& fallback) const = 0;
  virtual bool OptBoolean(const std::string& key, bool fallback) const = 0;

  // Appends every key to `out`, in order.
  virtual void Keys(std::vector<std::string>& out) const = 0;

  // The number of members.
  virtual std::size_t Length() const = 0;

  // Takes a member out; nothing happens when there is none.
  virtual void Remove(const std::string& key) = 0;

  // The object as pretty-printed JSON. Throws an SdkError "json.serialization_error" when a member
  // cannot be written.
  virtual std::string ToString() const = 0;
};

}  // namespace Velmora
