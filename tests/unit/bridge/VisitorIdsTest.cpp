#include <memory>
#include <optional>
#include <vector>

#include <gtest/gtest.h>

#include "bridge/VisitorIds.h"

namespace {

using PublicState = QEXMobileVisitorAuthenticationState;
using CoreState = Velmora::VisitorIdAuthenticationState;
using Velmora::ToCppVisitorAuthenticationState;
using Velmora::ToPlatformVisitorAuthenticationState;
using Velmora::ToQEXMobileVisitorIdArray;
using Velmora::VisitorId;

TEST(QEXMobileVisitorId, StartsWithoutContent) {
  const QEXMobileVisitorId visitorId;
  EXPECT_EQ(visitorId.idOrigin(), std::nullopt);
  EXPECT_EQ(visitorId.idType(), std::nullopt);
  EXPECT_EQ(visitorId.identifier(), std::nullopt);
  EXPECT_EQ(visitorId.authenticationState(), PublicState::unknown);
}

TEST(QEXMobileVisitorId, TakesAllPropertiesAtOnce) {
  QEXMobileVisitorId visitorId;
  EXPECT_EQ(&visitorId.initWithOrigin("origin", "type", "id", PublicState::authenticated),
            &visitorId);
  EXPECT_EQ(visitorId.idOrigin(), "origin");
  EXPECT_EQ(visitorId.idType(), "type");
  EXPECT_EQ(visitorId.identifier(), "id");
  EXPECT_EQ(visitorId.authenticationState(), PublicState::authenticated);
}

TEST(QEXMobileVisitorId, PropertiesCanBeSetOneByOne) {
  QEXMobileVisitorId visitorId;
  visitorId.setIdOrigin("o");
  visitorId.setIdType("t");
  visitorId.setIdentifier("i");
  visitorId.setAuthenticationState(PublicState::loggedOut);
  EXPECT_EQ(visitorId.idOrigin(), "o");
  EXPECT_EQ(visitorId.idType(), "t");
  EXPECT_EQ(visitorId.identifier(), "i");
  EXPECT_EQ(visitorId.authenticationState(), PublicState::loggedOut);
  visitorId.setIdentifier(std::nullopt);
  EXPECT_EQ(visitorId.identifier(), std::nullopt);
}

TEST(QEXMobileVisitorId, CopiesAreIndependent) {
  QEXMobileVisitorId original;
  original.setIdentifier("a");
  QEXMobileVisitorId copy = original;
  copy.setIdentifier("b");
  EXPECT_EQ(original.identifier(), "a");
}

TEST(VisitorIds, AuthenticationStatesAreMappedBothWays) {
  for (unsigned state = 0; state < 3; ++state) {
    EXPECT_EQ(ToCppVisitorAuthenticationState(static_cast<PublicState>(state)),
              static_cast<CoreState>(state));
    EXPECT_EQ(ToPlatformVisitorAuthenticationState(static_cast<CoreState>(state)),
              static_cast<PublicState>(state));
  }
}

TEST(VisitorIds, OtherAuthenticationStatesBecomeUnknown) {
  for (const int state : {3, 5, 255, 0x7FFFFFFF, -1}) {
    EXPECT_EQ(ToCppVisitorAuthenticationState(static_cast<PublicState>(state)), CoreState::Unknown);
    EXPECT_EQ(ToPlatformVisitorAuthenticationState(static_cast<CoreState>(state)),
              PublicState::unknown);
  }
}

TEST(VisitorIds, BecomePublicOnesInOrder) {
  const auto result = ToQEXMobileVisitorIdArray(
      {std::make_shared<VisitorId>("o1", "t1", "i1", CoreState::Authenticated),
       std::make_shared<VisitorId>("o2", "t2", "i2", CoreState::LoggedOut)});
  ASSERT_EQ(result.size(), 2U);
  EXPECT_EQ(result[0].idOrigin(), "o1");
  EXPECT_EQ(result[0].idType(), "t1");
  EXPECT_EQ(result[0].identifier(), "i1");
  EXPECT_EQ(result[0].authenticationState(), PublicState::authenticated);
  EXPECT_EQ(result[1].identifier(), "i2");
  EXPECT_EQ(result[1].authenticationState(), PublicState::loggedOut);
}

TEST(VisitorIds, EmptyTextsBecomeAbsentAndAStrangeStateUnknown) {
  const auto result = ToQEXMobileVisitorIdArray(
      {std::make_shared<VisitorId>("", "", "", static_cast<CoreState>(5))});
  ASSERT_EQ(result.size(), 1U);
  EXPECT_EQ(result[0].idOrigin(), std::nullopt);
  EXPECT_EQ(result[0].idType(), std::nullopt);
  EXPECT_EQ(result[0].identifier(), std::nullopt);
  EXPECT_EQ(result[0].authenticationState(), PublicState::unknown);
}

TEST(VisitorIds, NoneGiveNoneAndAnEmptyPointerAnEmptyOne) {
  EXPECT_TRUE(ToQEXMobileVisitorIdArray({}).empty());
  const auto result = ToQEXMobileVisitorIdArray({nullptr});
  ASSERT_EQ(result.size(), 1U);
  EXPECT_EQ(result[0].identifier(), std::nullopt);
}

}  // namespace
