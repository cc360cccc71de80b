#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "VelmoraCore/JsonObject.h"
#include "VelmoraCore/Object.h"
#include "VelmoraCore/Variant.h"
#include "services/json/JsonKindCheck.h"

namespace Velmora {

// A JSON object over the platform's JSON. Make it with std::make_shared.
//
// Members are variants. Null members and empty strings are kept, but ToString leaves them out, and
// fails for an array that holds one: the platform has no value for them.
class NativeJsonObject : public Object, public virtual JsonObject {
 public:
  // Throws an SdkError "json.serialization_error" when `json`, up to its first zero byte, is not
  // the text of an object. Of members with one key the last wins.
  explicit NativeJsonObject(const std::string& json);

  // Every value becomes a string member.
  explicit NativeJsonObject(const std::map<std::string, std::string>& map);

  explicit NativeJsonObject(const std::map<std::string, std::shared_ptr<Variant>>& map);

  JsonType GetType(const std::string& key) const override;
  std::shared_ptr<JsonObject> GetJsonObject(const std::string& key) const override;
  std::shared_ptr<JsonArray> GetJsonArray(const std::string& key) const override;
  std::int32_t GetInt(const std::string& key) const override;
  std::int64_t GetLong(const std::string& key) const override;
  double GetDouble(const std::string& key) const override;
  std::string GetString(const std::string& key) const override;
  bool GetBoolean(const std::string& key) const override;

  // Objects and arrays of another class than the platform's change nothing.
  std::shared_ptr<JsonObject> PutJsonObject(const std::string& key,
                                            const std::shared_ptr<JsonObject>& value) override;
  std::shared_ptr<JsonObject> PutJsonArray(const std::string& key,
                                           const std::shared_ptr<JsonArray>& value) override;
  std::shared_ptr<JsonObject> PutInt(const std::string& key, std::int32_t value) override;
  std::shared_ptr<JsonObject> PutLong(const std::string& key, std::int64_t value) override;
  std::shared_ptr<JsonObject> PutDouble(const std::string& key, double value) override;
  std::shared_ptr<JsonObject> PutString(const std::string& key, const std::string& value) override;
  std::shared_ptr<JsonObject> PutBoolean(const std::string& key, bool value) override;

  std::shared_ptr<JsonObject> OptJsonObject(const std::string& key) const override;
  std::shared_ptr<JsonArray> OptJsonArray(const std::string& key) const override;
  std::int32_t OptInt(const std::string& key, std::int32_t fallback) const override;
  std::int64_t OptLong(const std::string& key, std::int64_t fallback) const override;
  double OptDouble(const std::string& key, double fallback) const override;
  std::string OptString(const std::string& key, const std::string& fallback) const override;
  bool OptBoolean(const std::string& key, bool fallback) const override;

  void Keys(std::vector<std::string>& out) const override;
  std::size_t Length() const override;
  void Remove(const std::string& key) override;
  std::string ToString() const override;

  bool Contains(const std::string& key) const;

  // Holds until the object is changed.
  const VariantMap& Members() const { return members_; }

 private:
  // The member's value, which passes `check`.
  const Variant& Get(const std::string& key, JsonKindCheck check, int line) const;
  std::shared_ptr<JsonObject> Put(const std::string& key, std::shared_ptr<Variant> value);

  VariantMap members_;
};

}  // namespace Velmora
