#include <gtest/gtest.h>

#include "bridge/PublicEnums.h"

namespace {

using Velmora::LoggingMode;
using Velmora::MobilePrivacyStatus;
using Velmora::ToLoggingMode;
using Velmora::ToMobilePrivacyStatus;
using Velmora::ToQEXMobilePrivacyStatus;

TEST(PublicEnums, PrivacyStatusIsMappedBothWays) {
  for (unsigned status = 0; status < 3; ++status) {
    EXPECT_EQ(ToMobilePrivacyStatus(static_cast<QEXMobilePrivacyStatus>(status)),
              static_cast<MobilePrivacyStatus>(status));
    EXPECT_EQ(ToQEXMobilePrivacyStatus(static_cast<MobilePrivacyStatus>(status)),
              static_cast<QEXMobilePrivacyStatus>(status));
  }
}

TEST(PublicEnums, EveryOtherPrivacyStatusIsUnknown) {
  for (const int status : {3, 5, 9, 256, 0x7FFFFFFF, -1}) {
    EXPECT_EQ(ToMobilePrivacyStatus(static_cast<QEXMobilePrivacyStatus>(status)),
              MobilePrivacyStatus::Unknown);
    EXPECT_EQ(ToQEXMobilePrivacyStatus(static_cast<MobilePrivacyStatus>(status)),
              QEXMobilePrivacyStatus::unknown);
  }
  EXPECT_EQ(ToMobilePrivacyStatus(static_cast<QEXMobilePrivacyStatus>(0x100000000U)),
            MobilePrivacyStatus::Unknown);
}

TEST(PublicEnums, LogLevelsAreMappedAndOthersAreError) {
  for (unsigned level = 0; level < 4; ++level) {
    EXPECT_EQ(ToLoggingMode(static_cast<QEXMobileLogLevel>(level)),
              static_cast<LoggingMode>(level));
  }
  for (const std::int64_t level : {4LL, 7LL, 256LL, 0x7FFFFFFFLL, 0x100000001LL, -1LL}) {
    EXPECT_EQ(ToLoggingMode(static_cast<QEXMobileLogLevel>(level)), LoggingMode::Error);
  }
}

}  // namespace
