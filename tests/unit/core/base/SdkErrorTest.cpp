#include <algorithm>
#include <exception>
#include <optional>
#include <string>
#include <thread>
#include <type_traits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "VelmoraCore/SdkError.h"

namespace Velmora {
namespace {

using testing::HasSubstr;

SdkError MakeError() {
  return {"json.key_not_found", "key: a", DebugInfo("src/services/json/NativeJsonObject", 42)};
}

TEST(SdkError, CarriesCodeMessageAndPlace) {
  const SdkError error = MakeError();

  EXPECT_EQ(error.GetCode(), "json.key_not_found");
  EXPECT_EQ(error.GetMessage(), "key: a");
  EXPECT_EQ(error.GetDebugInfo().GetSourceLocation(), "src/services/json/NativeJsonObject");
  EXPECT_EQ(error.GetDebugInfo().GetLine(), 42);
}

TEST(SdkError, DescribesItselfAsAStandardException) {
  const SdkError error = MakeError();
  const std::exception& standard = error;
  EXPECT_STREQ(standard.what(), "json.key_not_found: key: a");
}

TEST(SdkError, CopiesWithoutThrowing) {
  static_assert(std::is_nothrow_copy_constructible_v<SdkError>);
  static_assert(std::is_nothrow_copy_assignable_v<SdkError>);
  std::optional<SdkError> original = MakeError();
  const SdkError copy = *original;
  original.reset();

  EXPECT_EQ(copy.GetCode(), "json.key_not_found");
  EXPECT_EQ(copy.GetDebugInfo().GetLine(), 42);
}

TEST(SdkError, KeepsItsContentWhenMovedFrom) {
  SdkError original = MakeError();
  const SdkError moved = std::move(original);

  EXPECT_EQ(moved.GetCode(), "json.key_not_found");
}

TEST(SdkError, KeepsEmptyTexts) {
  const SdkError error("", "", DebugInfo("", 0));

  EXPECT_EQ(error.GetCode(), "");
  EXPECT_EQ(error.GetMessage(), "");
  EXPECT_STREQ(error.what(), ": ");
}

TEST(DebugInfo, ShowsTheStackOneFramePerLine) {
  const std::string trace = DebugInfo("src/services/json/NativeJsonObject", 1).GetStackTrace();

  EXPECT_GT(std::count(trace.begin(), trace.end(), '\n'), 1);
  EXPECT_THAT(trace, HasSubstr("core_base_tests"));
}

TEST(DebugInfo, ShowsTheStackOfTheThreadThatMadeIt) {
  std::optional<DebugInfo> info;
  std::thread([&info] { info.emplace("src/services/json/NativeJsonObject", 1); }).join();

  const std::string here = DebugInfo("src/services/json/NativeJsonObject", 1).GetStackTrace();
  const std::string there = info->GetStackTrace();

  EXPECT_FALSE(there.empty());
  EXPECT_NE(here, there);
}

// Each level adds its own frame, which no optimiser may fold.
[[gnu::noinline]] std::string TraceAtDepth(int depth) {
  if (depth == 0) {
    return DebugInfo("src/services/json/NativeJsonObject", 1).GetStackTrace();
  }
  std::string trace = TraceAtDepth(depth - 1);
  trace += "";
  return trace;
}

TEST(DebugInfo, BoundsTheStackItKeeps) {
  const std::string trace = TraceAtDepth(1000);
  const auto frames = std::count(trace.begin(), trace.end(), '\n');
  EXPECT_GT(frames, 10);
  EXPECT_LT(frames, 100);
}

}  // namespace
}  // namespace Velmora
