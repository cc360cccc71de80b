#include <gtest/gtest.h>

#include "VelmoraCore/HttpConnectionConstants.h"

namespace Velmora {
namespace {

TEST(HttpConnectionConstants, AreTheStatusCodesOfTheirNames) {
  EXPECT_EQ(HttpConnectionConstants::HTTP_OK, 200);
  EXPECT_EQ(HttpConnectionConstants::HTTP_PARTIAL_CONTENT, 206);
  EXPECT_EQ(HttpConnectionConstants::HTTP_NOT_MODIFIED, 304);
  EXPECT_EQ(HttpConnectionConstants::HTTP_NOT_FOUND, 404);
  EXPECT_EQ(HttpConnectionConstants::HTTP_REQUEST_TIMEOUT, 408);
  EXPECT_EQ(HttpConnectionConstants::HTTP_REQUESTED_RANGE_NOT_SATISFIABLE, 416);
  EXPECT_EQ(HttpConnectionConstants::HTTP_INTERNAL_SERVER_ERROR, 500);
  EXPECT_EQ(HttpConnectionConstants::HTTP_SERVICE_UNAVAILABLE, 503);
}

}  // namespace
}  // namespace Velmora
