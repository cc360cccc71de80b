#include <utility>

#include <gtest/gtest.h>

#include "services/json/KRVJsonType.h"

namespace {

using Velmora::JsonType;
using Velmora::VariantKind;

TEST(KRVJsonType, MapsEveryKindToItsType) {
  const std::pair<VariantKind, JsonType> types[] = {
      {VariantKind::Null, JsonType::Null},           {VariantKind::String, JsonType::String},
      {VariantKind::Integer, JsonType::Number},      {VariantKind::Long, JsonType::Number},
      {VariantKind::Double, JsonType::Number},       {VariantKind::Boolean, JsonType::Boolean},
      {VariantKind::VariantVector, JsonType::Array}, {VariantKind::VariantMap, JsonType::Object},
  };
  for (const auto& [kind, type] : types) EXPECT_EQ(KRVJsonType::Get(kind), type);
}

TEST(KRVJsonType, HasTheNumbersThatTheCoreKnows) {
  EXPECT_EQ(static_cast<int>(KRVJsonType::Get(static_cast<VariantKind>(0))), 5);
  EXPECT_EQ(static_cast<int>(KRVJsonType::Get(static_cast<VariantKind>(1))), 2);
  EXPECT_EQ(static_cast<int>(KRVJsonType::Get(static_cast<VariantKind>(2))), 0);
  EXPECT_EQ(static_cast<int>(KRVJsonType::Get(static_cast<VariantKind>(3))), 0);
  EXPECT_EQ(static_cast<int>(KRVJsonType::Get(static_cast<VariantKind>(4))), 0);
  EXPECT_EQ(static_cast<int>(KRVJsonType::Get(static_cast<VariantKind>(5))), 1);
  EXPECT_EQ(static_cast<int>(KRVJsonType::Get(static_cast<VariantKind>(6))), 3);
  EXPECT_EQ(static_cast<int>(KRVJsonType::Get(static_cast<VariantKind>(7))), 4);
}

TEST(KRVJsonType, TakesAnUnknownKindForNull) {
  EXPECT_EQ(KRVJsonType::Get(static_cast<VariantKind>(8)), JsonType::Null);
  EXPECT_EQ(KRVJsonType::Get(static_cast<VariantKind>(-1)), JsonType::Null);
}

}  // namespace
