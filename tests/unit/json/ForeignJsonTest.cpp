#include "ForeignJson.h"
#include "JsonFixture.h"
#include "services/json/NativeJsonArray.h"
#include "services/json/NativeJsonObject.h"
#include "services/json/NativeJsonUtilityService.h"

namespace Velmora {
namespace {

class ForeignJsonTest : public JsonFixture {
 protected:
  const std::shared_ptr<JsonObject> foreignObject_ = std::make_shared<ForeignJsonObject>();
  const std::shared_ptr<JsonArray> foreignArray_ = std::make_shared<ForeignJsonArray>();
};

TEST_F(ForeignJsonTest, ChangesNoObject) {
  const auto object = std::make_shared<NativeJsonObject>(R"({"a":1})");
  const std::shared_ptr<JsonObject> self = object;
  EXPECT_EQ(object->PutJsonObject("a", foreignObject_), self);
  EXPECT_EQ(object->PutJsonArray("b", foreignArray_), self);
  EXPECT_EQ(object->Length(), 1U);
  EXPECT_EQ(object->GetInt("a"), 1);
}

TEST_F(ForeignJsonTest, ChangesNoArray) {
  const auto array = std::make_shared<NativeJsonArray>("[1]");
  const std::shared_ptr<JsonArray> self = array;
  EXPECT_EQ(array->PutJsonObject(foreignObject_), self);
  EXPECT_EQ(array->PutJsonArray(0, foreignArray_), self);
  EXPECT_EQ(array->Length(), 1U);
}

TEST_F(ForeignJsonTest, FlattensToNothing) {
  EXPECT_THAT(CreateNativeJsonUtilityService()->MapFromJsonObject(foreignObject_),
              testing::IsEmpty());
}

}  // namespace
}  // namespace Velmora
