#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "VelmoraCore/EventData.h"

namespace Velmora {
namespace {

TEST(EventData, IsEmptyAtFirst) {
  const EventData data;
  EXPECT_TRUE(data.IsEmpty());
  EXPECT_TRUE(data.GetAll().empty());
  EXPECT_EQ(data.Get("a"), nullptr);
}

TEST(EventData, KeepsStringsAndReplacesThem) {
  EventData data;
  data.PutString("action", "first");
  data.PutString("action", "second");
  data.PutString("", "empty key");

  EXPECT_FALSE(data.IsEmpty());
  EXPECT_EQ(data.Get("action")->GetString(), "second");
  EXPECT_EQ(data.Get("")->GetString(), "empty key");
  EXPECT_EQ(data.GetAll().size(), 2U);
}

TEST(EventData, KeepsStringMapsAsMapsOfStrings) {
  EventData data;
  data.PutStringMap("contextdata", {{"sku", "A-17"}, {"size", ""}});
  data.PutStringMap("none", {});

  const VariantMap& context = data.Get("contextdata")->GetVariantMap();
  ASSERT_EQ(context.size(), 2U);
  EXPECT_EQ(context.at("sku")->GetString(), "A-17");
  EXPECT_EQ(context.at("size")->GetString(), "");
  EXPECT_TRUE(data.Get("none")->GetVariantMap().empty());
}

TEST(EventData, KeepsVariantsAndEmptyPointers) {
  const auto number = Variant::FromLong(5);
  EventData data({{"given", number}});
  data.Put("number", number);
  data.Put("nothing", nullptr);

  EXPECT_EQ(data.Get("given"), number);
  EXPECT_EQ(data.Get("number"), number);
  EXPECT_EQ(data.Get("nothing"), nullptr);
  EXPECT_EQ(data.GetAll().count("nothing"), 1U);
}

TEST(EventData, IsCopiedApartFromItsVariants) {
  EventData original;
  original.PutString("a", "1");

  const std::shared_ptr<EventData> copy = original.Copy();
  copy->PutString("b", "2");
  original.PutString("a", "3");

  EXPECT_EQ(original.Get("b"), nullptr);
  EXPECT_EQ(copy->Get("a")->GetString(), "1");
  EXPECT_EQ(copy->Get("b")->GetString(), "2");
  EXPECT_EQ(copy->Copy()->Get("b"), copy->Get("b"));
}

}  // namespace
}  // namespace Velmora
