#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "VelmoraCore/JsonUtilityServiceInterface.h"
#include "VelmoraCore/Object.h"

namespace Velmora {

// Makes JSON objects and arrays over the platform's JSON. Has no state: any thread may use it.
class NativeJsonUtilityService : public Object, public virtual JsonUtilityServiceInterface {
 public:
  std::shared_ptr<JsonObject> CreateJsonObject(const std::string& json) override;
  std::shared_ptr<JsonObject> CreateJsonObject(
      const std::map<std::string, std::shared_ptr<Variant>>& map) override;
  std::shared_ptr<JsonObject> CreateJsonObject(
      const std::map<std::string, std::string>& map) override;
  std::shared_ptr<JsonObject> CreateEmptyJsonObject() override;
  std::shared_ptr<JsonArray> CreateJsonArray(const std::string& json) override;
  std::shared_ptr<JsonArray> CreateJsonArray(
      const std::vector<std::shared_ptr<Variant>>& values) override;
  std::shared_ptr<JsonArray> CreateEmptyJsonArray() override;

  // A member that holds nothing is left out. Throws what ToString of a nested array or object
  // throws. Empty for an object that is not the platform's.
  std::map<std::string, std::string> MapFromJsonObject(
      const std::shared_ptr<JsonObject>& object) override;
};

std::shared_ptr<JsonUtilityServiceInterface> CreateNativeJsonUtilityService();

}  // namespace Velmora
