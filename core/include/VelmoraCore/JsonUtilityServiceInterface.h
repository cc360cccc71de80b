#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "VelmoraCore/Export.h"
#include "VelmoraCore/JsonArray.h"
#include "VelmoraCore/JsonObject.h"
#include "VelmoraCore/Object.h"
#include "VelmoraCore/Variant.h"

namespace Velmora {

// Makes JSON objects and arrays. May be called on any thread; what it makes belongs to the caller.
class VELMORA_CORE_API JsonUtilityServiceInterface : public virtual ObjectInterface {
 public:
  ~JsonUtilityServiceInterface() override;

  // From UTF-8 text. Throws an SdkError "json.serialization_error" when it is not JSON.
  virtual std::shared_ptr<JsonObject> CreateJsonObject(const std::string& json) = 0;

  // From a copy of the map.
  virtual std::shared_ptr<JsonObject> CreateJsonObject(
      const std::map<std::string, std::shared_ptr<Variant>>& map) = 0;
  virtual std::shared_ptr<JsonObject> CreateJsonObject(
      const std::map<std::string, std::string>& map) = 0;

  virtual std::shared_ptr<JsonObject> CreateEmptyJsonObject() = 0;

  // As for objects.
  virtual std::shared_ptr<JsonArray> CreateJsonArray(const std::string& json) = 0;
  virtual std::shared_ptr<JsonArray> CreateJsonArray(
      const std::vector<std::shared_ptr<Variant>>& values) = 0;

  virtual std::shared_ptr<JsonArray> CreateEmptyJsonArray() = 0;

  // Every member of `object` as text: null as the empty text, booleans as "1" and "0", doubles with
  // six decimals, arrays and objects as JSON. Empty for an empty pointer. `object` must come from a
  // service of the same kind.
  virtual std::map<std::string, std::string> MapFromJsonObject(
      const std::shared_ptr<JsonObject>& object) = 0;
};

}  // namespace Velmora
