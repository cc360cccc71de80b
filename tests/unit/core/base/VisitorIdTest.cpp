#include <gtest/gtest.h>

#include "VelmoraCore/VisitorId.h"

namespace Velmora {
namespace {

TEST(VisitorId, KeepsItsFourParts) {
  const VisitorId visitor("origin", "type", "", VisitorIdAuthenticationState::LoggedOut);

  EXPECT_EQ(visitor.GetIdOrigin(), "origin");
  EXPECT_EQ(visitor.GetIdType(), "type");
  EXPECT_EQ(visitor.GetId(), "");
  EXPECT_EQ(visitor.GetAuthenticationState(), VisitorIdAuthenticationState::LoggedOut);
}

}  // namespace
}  // namespace Velmora
