#include <memory>
#include <string>
#include <utility>
#include <variant>

#include <gtest/gtest.h>

#include "VelmoraCore/Expected.h"
#include "VelmoraCore/SdkError.h"

namespace Velmora {
namespace {

using Number = Expected<int, std::string>;

Number Half(int value) {
  if (value % 2 != 0) {
    return std::string("odd");
  }
  return value / 2;
}

TEST(Expected, HoldsTheValue) {
  const Number result = Half(4);

  EXPECT_TRUE(result.HasValue());
  EXPECT_TRUE(static_cast<bool>(result));
  EXPECT_EQ(result.GetValue(), 2);
  EXPECT_EQ(result.ValueOr(9), 2);
  EXPECT_THROW(result.GetError(), std::bad_variant_access);
}

TEST(Expected, HoldsTheError) {
  const Number result = Half(3);

  EXPECT_FALSE(result.HasValue());
  EXPECT_FALSE(static_cast<bool>(result));
  EXPECT_EQ(result.GetError(), "odd");
  EXPECT_EQ(result.ValueOr(9), 9);
  EXPECT_THROW(result.GetValue(), std::bad_variant_access);
}

TEST(Expected, MovesItsContentOut) {
  Expected<std::unique_ptr<int>, std::string> value(std::make_unique<int>(5));
  EXPECT_EQ(*std::move(value).GetValue(), 5);

  Expected<int, std::unique_ptr<int>> error(std::make_unique<int>(6));
  EXPECT_EQ(*std::move(error).GetError(), 6);
}

TEST(Expected, CarriesSharedPointersAndSdkErrors) {
  using Result = Expected<std::shared_ptr<int>, SdkError>;
  const Result empty(std::shared_ptr<int>{});
  const Result failed(SdkError("filesystem", "gone", DebugInfo("src/services/x/Y", 1)));
  Result copy = failed;

  EXPECT_TRUE(empty.HasValue());
  EXPECT_EQ(empty.GetValue(), nullptr);
  EXPECT_EQ(copy.GetError().GetCode(), "filesystem");
  copy = empty;
  EXPECT_TRUE(copy.HasValue());
}

}  // namespace
}  // namespace Velmora
