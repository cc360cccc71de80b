#include <limits>
#include <optional>
#include <string>

#include <gmock/gmock.h>

#include "services/network/Rfc2822Date.h"

namespace {

using Velmora::FormatRfc2822Date;
using Velmora::ParseRfc2822Date;

TEST(Rfc2822Date, FormatsSecondsInUniversalTime) {
  EXPECT_EQ(FormatRfc2822Date(0), "Thu, 01 Jan 1970 00:00:00 GMT");
  EXPECT_EQ(FormatRfc2822Date(1709634030), "Tue, 05 Mar 2024 10:20:30 GMT");
  EXPECT_EQ(FormatRfc2822Date(1709164800), "Thu, 29 Feb 2024 00:00:00 GMT");
  EXPECT_EQ(FormatRfc2822Date(-1), "Wed, 31 Dec 1969 23:59:59 GMT");
}

TEST(Rfc2822Date, CutsFractions) {
  EXPECT_EQ(FormatRfc2822Date(59.999), "Thu, 01 Jan 1970 00:00:59 GMT");
  EXPECT_EQ(FormatRfc2822Date(-0.5), "Wed, 31 Dec 1969 23:59:59 GMT");
}

TEST(Rfc2822Date, StaysWithinFourDigitsOfYears) {
  EXPECT_EQ(FormatRfc2822Date(1e18), "Fri, 31 Dec 9999 23:59:59 GMT");
  EXPECT_EQ(FormatRfc2822Date(std::numeric_limits<double>::infinity()),
            "Fri, 31 Dec 9999 23:59:59 GMT");
  EXPECT_EQ(FormatRfc2822Date(-1e300), "Mon, 01 Jan 0001 00:00:00 GMT");
  EXPECT_EQ(FormatRfc2822Date(std::numeric_limits<double>::quiet_NaN()),
            "Thu, 01 Jan 1970 00:00:00 GMT");
}

TEST(Rfc2822Date, ParsesWhatItFormats) {
  for (const std::int64_t seconds :
       {0LL, 1709634030LL, 951782400LL, -62135596800LL, 253402300799LL, -1LL, 4102444800LL}) {
    EXPECT_EQ(ParseRfc2822Date(FormatRfc2822Date(static_cast<double>(seconds))), seconds);
  }
}

TEST(Rfc2822Date, DoesNotCareWhichDayOfTheWeekItIs) {
  EXPECT_EQ(ParseRfc2822Date("Sun, 05 Mar 2024 10:20:30 GMT"), 1709634030);
}

TEST(Rfc2822Date, TakesADayOfOneDigit) {
  EXPECT_EQ(ParseRfc2822Date("Tue, 5 Mar 2024 10:20:30 GMT"), 1709634030);
  EXPECT_EQ(ParseRfc2822Date("Tue, 0 Mar 2024 10:20:30 GMT"), std::nullopt);
}

TEST(Rfc2822Date, RefusesOtherForms) {
  for (const std::string text : {"",
                                 "Tue",
                                 "Tue, 05 Mar 2024 10:20:30",
                                 "Tue, 05 Mar 2024 10:20:30 UTC",
                                 "Tue, 05 Mar 2024 10:20:30 GMT ",
                                 " Tue, 05 Mar 2024 10:20:30 GMT",
                                 "Tuesday, 05-Mar-24 10:20:30 GMT",
                                 "Tue Mar  5 10:20:30 2024",
                                 "Tue, 05 Mar 24 10:20:30 GMT",
                                 "Tue, 05 Mrz 2024 10:20:30 GMT",
                                 "Tue, -5 Mar 2024 10:20:30 GMT",
                                 "Tue, 05 Mar -024 10:20:30 GMT",
                                 "Tue, +5 Mar 2024 10:20:30 GMT",
                                 "Tue,  5 Mar 2024 10:20:30 GMT",
                                 "Tue, Mar 2024 10:20:30 GMT",
                                 "Tue, 005 Mar 2024 10:20:30 GMT",
                                 "Tue, -1 Mar 2024 10:20:30 GMT",
                                 "Tue, 05 Mar 2024 9:20:30 GMT",
                                 "Tue, 05 Mar 2024 10:2:30 GMT",
                                 "2024-03-05T10:20:30Z",
                                 "1709634030"}) {
    EXPECT_EQ(ParseRfc2822Date(text), std::nullopt) << text;
  }
}

TEST(Rfc2822Date, RefusesTimesThatDoNotExist) {
  for (const std::string text : {"Thu, 30 Feb 2024 00:00:00 GMT", "Wed, 29 Feb 2023 00:00:00 GMT",
                                 "Tue, 00 Mar 2024 10:20:30 GMT", "Tue, 32 Mar 2024 10:20:30 GMT",
                                 "Tue, 05 Mar 2024 24:00:00 GMT", "Tue, 05 Mar 2024 10:60:30 GMT",
                                 "Tue, 05 Mar 2024 10:20:60 GMT"}) {
    EXPECT_EQ(ParseRfc2822Date(text), std::nullopt) << text;
  }
}

TEST(Rfc2822Date, SurvivesAHugeText) {
  EXPECT_EQ(ParseRfc2822Date(std::string(10'000'000, '0')), std::nullopt);
  EXPECT_EQ(ParseRfc2822Date("Tue, 05 Mar 2024 10:20:30 GMT" + std::string(10'000'000, ' ')),
            std::nullopt);
}

}  // namespace
