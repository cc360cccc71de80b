#include <limits>
#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

#include "QEXCore_iOS/Platform/DeviceError.h"
#include "QEXCore_iOS/Platform/Error.h"

namespace Platform {
namespace {

TEST(Error, IsEmptyUntilOneIsStored) {
  const Error error;
  EXPECT_EQ(error.Domain(), "");
  EXPECT_EQ(error.Code(), 0);
  EXPECT_EQ(error.LocalizedDescription(), "");
}

TEST(Error, MakesItsDescriptionFromDomainAndCode) {
  const Error error("com.example.errors", 7);
  EXPECT_EQ(error.Domain(), "com.example.errors");
  EXPECT_EQ(error.Code(), 7);
  EXPECT_EQ(error.LocalizedDescription(),
            "The operation couldn\u2019t be completed. (com.example.errors error 7.)");
}

TEST(Error, KeepsTheDescriptionGiven) {
  const auto lowest = std::numeric_limits<std::int64_t>::min();
  const Error error("domain", lowest, "Line 3, column 4");
  EXPECT_EQ(error.Code(), lowest);
  EXPECT_EQ(error.LocalizedDescription(), "Line 3, column 4");
}

TEST(Error, IsComparedByItsThreeFields) {
  EXPECT_EQ(Error("a", 1), Error("a", 1));
  EXPECT_NE(Error("a", 1), Error("b", 1));
  EXPECT_NE(Error("a", 1), Error("a", 2));
  EXPECT_NE(Error("a", 1, "x"), Error("a", 1, "y"));
}

TEST(DeviceError, IsCaughtAsARuntimeErrorWithItsMessage) {
  try {
    throw DeviceError("cannot read /a: input/output error");
  } catch (const std::runtime_error& error) {
    EXPECT_STREQ(error.what(), "cannot read /a: input/output error");
    return;
  }
  FAIL() << "not caught as std::runtime_error";
}

}  // namespace
}  // namespace Platform
