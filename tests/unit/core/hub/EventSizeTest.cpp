#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "VelmoraCore/Variant.h"
#include "hub/EventSize.h"

namespace {

using Velmora::Event;
using Velmora::EventData;
using Velmora::SizeOf;
using Velmora::Variant;

std::size_t SizeWith(const std::shared_ptr<Variant>& value, const std::string& key = "key") {
  EventData data;
  data.Put(key, value);
  return SizeOf(Event("name", "type", "source", std::make_shared<EventData>(data)));
}

TEST(EventSize, CountsNames) {
  const std::size_t small = SizeOf(Event("name", "type", "source"));
  EXPECT_GT(small, sizeof(Event));
  EXPECT_EQ(SizeOf(Event(std::string(1'004, 'n'), "type", "source")), small + 1'000);
}

TEST(EventSize, CountsTextsAndKeysByTheirBytes) {
  const std::size_t small = SizeWith(Variant::FromString("text"));
  EXPECT_EQ(SizeWith(Variant::FromString(std::string(1'000'004, 't'))), small + 1'000'000);
  EXPECT_EQ(SizeWith(Variant::FromString("text"), std::string(1'003, 'k')), small + 1'000);
}

TEST(EventSize, CountsEveryValueHoweverSmall) {
  const std::size_t one = SizeWith(Variant::FromVariantVector({Variant::FromNull()}));
  const std::size_t two =
      SizeWith(Variant::FromVariantVector({Variant::FromNull(), Variant::FromBoolean(true)}));
  EXPECT_GE(two - one, sizeof(Variant));
  EXPECT_EQ(SizeWith(Variant::FromVariantVector({nullptr})), one);
}

TEST(EventSize, NeedsNoStackForNesting) {
  std::shared_ptr<Variant> nested = Variant::FromString("innermost");
  constexpr std::size_t kDepth = 1'000'000;
  for (std::size_t depth = 0; depth < kDepth; ++depth) {
    nested = depth % 2 == 0 ? Variant::FromVariantVector({nested})
                            : Variant::FromVariantMap({{"k", nested}});
  }
  EXPECT_GT(SizeWith(nested), kDepth * sizeof(Variant));
}

}  // namespace
