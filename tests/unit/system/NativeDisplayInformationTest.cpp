#include <cmath>
#include <cstdint>
#include <limits>

#include "SystemInfoFixture.h"
#include "services/system/NativeDisplayInformation.h"

namespace {

constexpr std::int32_t kMaximum = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t kMinimum = std::numeric_limits<std::int32_t>::min();

using NativeDisplayInformationTest = SystemInfoFixture;

TEST_F(NativeDisplayInformationTest, GivesPixelsForPointsTimesScale) {
  host.screen->SetMetrics({.width = 375, .height = 812, .scale = 3});
  const auto display = service->GetDisplayInformation();
  EXPECT_EQ(display->GetWidthPixels(), 1125);
  EXPECT_EQ(display->GetHeightPixels(), 2436);
}

TEST_F(NativeDisplayInformationTest, NeverKnowsTheDensity) {
  EXPECT_EQ(service->GetDisplayInformation()->GetDensityDpi(), -1);
}

TEST_F(NativeDisplayInformationTest, DropsTheFractionOfAPixel) {
  host.screen->SetMetrics({.width = 10.5, .height = 0.9, .scale = 1.25});
  const auto display = service->GetDisplayInformation();
  EXPECT_EQ(display->GetWidthPixels(), 13);
  EXPECT_EQ(display->GetHeightPixels(), 1);
}

TEST_F(NativeDisplayInformationTest, DropsFractionsTowardZero) {
  host.screen->SetMetrics({.width = -10.9, .height = -0.5, .scale = 1});
  const auto display = service->GetDisplayInformation();
  EXPECT_EQ(display->GetWidthPixels(), -10);
  EXPECT_EQ(display->GetHeightPixels(), 0);
}

TEST_F(NativeDisplayInformationTest, IsZeroWithoutAScreen) {
  host.screen->SetMetrics({.width = 0, .height = 0, .scale = 1});
  const auto display = service->GetDisplayInformation();
  EXPECT_EQ(display->GetWidthPixels(), 0);
  EXPECT_EQ(display->GetHeightPixels(), 0);
}

TEST_F(NativeDisplayInformationTest, IsASnapshotOfTheMomentOfTheCall) {
  host.screen->SetMetrics({.width = 375, .height = 812, .scale = 1});
  const auto upright = service->GetDisplayInformation();
  host.screen->SetMetrics({.width = 812, .height = 375, .scale = 1});
  const auto turned = service->GetDisplayInformation();
  EXPECT_EQ(upright->GetWidthPixels(), 375);
  EXPECT_EQ(upright->GetHeightPixels(), 812);
  EXPECT_EQ(turned->GetWidthPixels(), 812);
  EXPECT_EQ(turned->GetHeightPixels(), 375);
}

TEST_F(NativeDisplayInformationTest, StaysWithin32BitsWhateverTheScreenSays) {
  host.screen->SetMetrics({.width = 1e300, .height = -1e300, .scale = 2});
  const auto huge = service->GetDisplayInformation();
  EXPECT_EQ(huge->GetWidthPixels(), kMaximum);
  EXPECT_EQ(huge->GetHeightPixels(), kMinimum);
  host.screen->SetMetrics({.width = std::nan(""), .height = INFINITY, .scale = 1});
  const auto odd = service->GetDisplayInformation();
  EXPECT_EQ(odd->GetWidthPixels(), 0);
  EXPECT_EQ(odd->GetHeightPixels(), kMaximum);
}

TEST_F(NativeDisplayInformationTest, KnowsNothingWhenTheScreenFails) {
  FailEveryPort();
  const auto display = service->GetDisplayInformation();
  EXPECT_EQ(display->GetWidthPixels(), -1);
  EXPECT_EQ(display->GetHeightPixels(), -1);
  EXPECT_EQ(display->GetDensityDpi(), -1);
}

}  // namespace
