#include <functional>
#include <optional>
#include <stdexcept>

#include <gtest/gtest.h>

#include "VelmoraCore/TryCatch.h"

namespace Velmora {
namespace {

std::optional<SdkError> ErrorOf(const std::function<void()>& attempt) {
  std::optional<SdkError> caught;
  TryCatch(attempt, [&caught](SdkError& error) { caught = error; });
  return caught;
}

TEST(TryCatch, CallsNoHandlerWhenNothingIsThrown) {
  bool ran = false;
  EXPECT_FALSE(ErrorOf([&ran] { ran = true; }).has_value());
  EXPECT_TRUE(ran);
}

TEST(TryCatch, HandsAnSdkErrorOnAsItIs) {
  const auto error = ErrorOf(
      [] { throw SdkError("filesystem", "no room", DebugInfo("src/services/filesystem/X", 7)); });

  ASSERT_TRUE(error.has_value());
  EXPECT_EQ(error->GetCode(), "filesystem");
  EXPECT_EQ(error->GetMessage(), "no room");
  EXPECT_EQ(error->GetDebugInfo().GetLine(), 7);
}

TEST(TryCatch, HandsOtherExceptionsOnAsSdkErrors) {
  const auto error = ErrorOf([] { throw std::out_of_range("too far"); });

  ASSERT_TRUE(error.has_value());
  EXPECT_EQ(error->GetCode(), "std.exception");
  EXPECT_EQ(error->GetMessage(), "too far");
}

TEST(TryCatch, HandsAnythingThrownOn) {
  const auto error = ErrorOf([] { throw 42; });

  ASSERT_TRUE(error.has_value());
  EXPECT_EQ(error->GetCode(), "std.exception");
}

TEST(TryCatch, TreatsAnEmptyAttemptAsAFailure) {
  const auto error = ErrorOf(nullptr);

  ASSERT_TRUE(error.has_value());
  EXPECT_EQ(error->GetCode(), "std.exception");
}

TEST(TryCatch, SwallowsTheErrorWithoutAHandler) {
  EXPECT_NO_THROW(TryCatch([] { throw std::runtime_error("lost"); }, nullptr));
}

TEST(TryCatch, LetsWhatTheHandlerThrowsThrough) {
  EXPECT_THROW(TryCatch([] { throw 1; }, [](SdkError&) { throw std::runtime_error("again"); }),
               std::runtime_error);
}

TEST(TrySwallow, TellsWhetherSomethingWasThrown) {
  EXPECT_TRUE(TrySwallow([] {}));
  EXPECT_FALSE(TrySwallow([] { throw SdkError("a", "b", DebugInfo("c", 1)); }));
  EXPECT_FALSE(TrySwallow([] { throw std::runtime_error("lost"); }));
  EXPECT_FALSE(TrySwallow([] { throw 1; }));
  EXPECT_FALSE(TrySwallow(nullptr));
}

}  // namespace
}  // namespace Velmora
