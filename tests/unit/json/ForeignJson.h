#pragma once

#include <gmock/gmock.h>

#include "VelmoraCore/JsonArray.h"
#include "VelmoraCore/JsonObject.h"

namespace Velmora {

// A JSON object and array of another implementation than the platform's.

class ForeignJsonObject : public Object, public virtual JsonObject {
 public:
  using Key = const std::string&;
  using ObjectPointer = std::shared_ptr<JsonObject>;
  using ArrayPointer = std::shared_ptr<JsonArray>;

  MOCK_METHOD(JsonType, GetType, (Key), (const, override));
  MOCK_METHOD(ObjectPointer, GetJsonObject, (Key), (const, override));
  MOCK_METHOD(ArrayPointer, GetJsonArray, (Key), (const, override));
  MOCK_METHOD(std::int32_t, GetInt, (Key), (const, override));
  MOCK_METHOD(std::int64_t, GetLong, (Key), (const, override));
  MOCK_METHOD(double, GetDouble, (Key), (const, override));
  MOCK_METHOD(std::string, GetString, (Key), (const, override));
  MOCK_METHOD(bool, GetBoolean, (Key), (const, override));
  MOCK_METHOD(ObjectPointer, PutJsonObject, (Key, const ObjectPointer&), (override));
  MOCK_METHOD(ObjectPointer, PutJsonArray, (Key, const ArrayPointer&), (override));
  MOCK_METHOD(ObjectPointer, PutInt, (Key, std::int32_t), (override));
  MOCK_METHOD(ObjectPointer, PutLong, (Key, std::int64_t), (override));
  MOCK_METHOD(ObjectPointer, PutDouble, (Key, double), (override));
  MOCK_METHOD(ObjectPointer, PutString, (Key, const std::string&), (override));
  MOCK_METHOD(ObjectPointer, PutBoolean, (Key, bool), (override));
  MOCK_METHOD(ObjectPointer, OptJsonObject, (Key), (const, override));
  MOCK_METHOD(ArrayPointer, OptJsonArray, (Key), (const, override));
  MOCK_METHOD(std::int32_t, OptInt, (Key, std::int32_t), (const, override));
  MOCK_METHOD(std::int64_t, OptLong, (Key, std::int64_t), (const, override));
  MOCK_METHOD(double, OptDouble, (Key, double), (const, override));
  MOCK_METHOD(std::string, OptString, (Key, const std::string&), (const, override));
  MOCK_METHOD(bool, OptBoolean, (Key, bool), (const, override));
  MOCK_METHOD(void, Keys, (std::vector<std::string>&), (const, override));
  MOCK_METHOD(std::size_t, Length, (), (const, override));
  MOCK_METHOD(void, Remove, (Key), (override));
  MOCK_METHOD(std::string, ToString, (), (const, override));
};

class ForeignJsonArray : public Object, public virtual JsonArray {
 public:
  using Index = std::uint32_t;
  using ObjectPointer = std::shared_ptr<JsonObject>;
  using ArrayPointer = std::shared_ptr<JsonArray>;

  MOCK_METHOD(JsonType, GetType, (Index), (const, override));
  MOCK_METHOD(ArrayPointer, PutJsonObject, (const ObjectPointer&), (override));
  MOCK_METHOD(ArrayPointer, PutJsonObject, (Index, const ObjectPointer&), (override));
  MOCK_METHOD(ArrayPointer, PutJsonArray, (const ArrayPointer&), (override));
  MOCK_METHOD(ArrayPointer, PutJsonArray, (Index, const ArrayPointer&), (override));
  MOCK_METHOD(ArrayPointer, PutInt, (std::int32_t), (override));
  MOCK_METHOD(ArrayPointer, PutInt, (Index, std::int32_t), (override));
  MOCK_METHOD(ArrayPointer, PutLong, (std::int64_t), (override));
  MOCK_METHOD(ArrayPointer, PutLong, (Index, std::int64_t), (override));
  MOCK_METHOD(ArrayPointer, PutDouble, (double), (override));
  MOCK_METHOD(ArrayPointer, PutDouble, (Index, double), (override));
  MOCK_METHOD(ArrayPointer, PutString, (const std::string&), (override));
  MOCK_METHOD(ArrayPointer, PutString, (Index, const std::string&), (override));
  MOCK_METHOD(ArrayPointer, PutBoolean, (bool), (override));
  MOCK_METHOD(ArrayPointer, PutBoolean, (Index, bool), (override));
  MOCK_METHOD(ObjectPointer, GetJsonObject, (Index), (const, override));
  MOCK_METHOD(ArrayPointer, GetJsonArray, (Index), (const, override));
  MOCK_METHOD(std::int32_t, GetInt, (Index), (const, override));
  MOCK_METHOD(std::int64_t, GetLong, (Index), (const, override));
  MOCK_METHOD(double, GetDouble, (Index), (const, override));
  MOCK_METHOD(std::string, GetString, (Index), (const, override));
  MOCK_METHOD(bool, GetBoolean, (Index), (const, override));
  MOCK_METHOD(ObjectPointer, OptJsonObject, (Index), (const, override));
  MOCK_METHOD(ArrayPointer, OptJsonArray, (Index), (const, override));
  MOCK_METHOD(std::int32_t, OptInt, (Index, std::int32_t), (const, override));
  MOCK_METHOD(std::int64_t, OptLong, (Index, std::int64_t), (const, override));
  MOCK_METHOD(double, OptDouble, (Index, double), (const, override));
  MOCK_METHOD(std::string, OptString, (Index, const std::string&), (const, override));
  MOCK_METHOD(bool, OptBoolean, (Index, bool), (const, override));
  MOCK_METHOD(std::size_t, Length, (), (const, override));
  MOCK_METHOD(std::string, ToString, (), (const, override));
};

}  // namespace Velmora
