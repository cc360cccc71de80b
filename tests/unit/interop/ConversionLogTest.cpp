#include <stdexcept>

#include <gtest/gtest.h>

#include "interop/CleanCollections.h"
#include "interop/HexConversion.h"
#include "interop/StringCollections.h"
#include "interop/StringConversion.h"
#include "interop/VariantConversion.h"
#include "support/LogCapture.h"

namespace Velmora {
namespace {

using Platform::Value;

// The log capture fails the test for any line.
TEST(Conversions, LogNothingWhateverTheyAreGiven) {
  const TestSupport::LogCapture log;
  EXPECT_EQ(ToNSString("\xFF"), std::nullopt);
  EXPECT_EQ(PlatformToVariant(Value::FromData({1})), nullptr);
  EXPECT_EQ(ToVariantMap({{1, Value::FromData({1})}}).size(), 1U);
  EXPECT_TRUE(ToStringMap({{1, 2}}).empty());
  EXPECT_EQ(CleanDictionary({{"", ""}}), Value::Dictionary());
  EXPECT_EQ(CleanArray(Value::Array({1})), Value::Array());
  EXPECT_EQ(ToNSDictionary(StringMap{{"", ""}}), Value::Dictionary());
  EXPECT_THROW(ToNSArray(VariantVector{nullptr}), std::invalid_argument);
  EXPECT_THROW(HexToBin("zz", 2), std::invalid_argument);
  EXPECT_EQ(ToHexFromEncodedData({}), std::nullopt);
}

}  // namespace
}  // namespace Velmora
