#include <cstdint>
#include <limits>
#include <ostream>
#include <string>

#include <gtest/gtest.h>

#include "VelmoraCore/StringUtils.h"

namespace Velmora {
namespace {

struct ReplaceCase {
  std::string text;
  std::string needle;
  std::string replacement;
  std::string expected;
};

class StringUtilsReplace : public testing::TestWithParam<ReplaceCase> {};

TEST_P(StringUtilsReplace, GoesOverTheTextOnce) {
  EXPECT_EQ(StringUtils::Replace(GetParam().text, GetParam().needle, GetParam().replacement),
            GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, StringUtilsReplace,
    testing::Values(ReplaceCase{"a/b/c", "/", "_", "a_b_c"}, ReplaceCase{"____", "__", "_", "__"},
                    ReplaceCase{"_____", "__", "_", "___"}, ReplaceCase{"a..b...", "..", "", "ab."},
                    ReplaceCase{"aaa", "a", "aa", "aaaaaa"}, ReplaceCase{"abc", "abc", "", ""},
                    ReplaceCase{"abc", "abcd", "x", "abc"}, ReplaceCase{"abc", "", "x", "abc"},
                    ReplaceCase{"", "a", "x", ""}, ReplaceCase{"", "", "x", ""},
                    ReplaceCase{std::string("a\0b", 3), std::string(1, '\0'), "0", "a0b"}));

TEST(StringUtils, ReplacesInHugeTexts) {
  const std::string filler(10'000'000, 'x');
  EXPECT_EQ(StringUtils::Replace("/" + filler + "/", "/", "_"), "_" + filler + "_");
}

struct UrlCase {
  std::string text;
  bool isUrl;

  friend std::ostream& operator<<(std::ostream& out, const UrlCase& urlCase) {
    return out << '"' << urlCase.text << '"';
  }
};

class StringUtilsUrl : public testing::TestWithParam<UrlCase> {};

TEST_P(StringUtilsUrl, IsToldFromOtherTexts) {
  EXPECT_EQ(StringUtils::StringIsUrl(GetParam().text), GetParam().isUrl);
}

INSTANTIATE_TEST_SUITE_P(
    Accepted, StringUtilsUrl,
    testing::Values(UrlCase{"https://example.com", true}, UrlCase{"https://h/a/b?x=1#f", true},
                    UrlCase{"HTTP://H", true}, UrlCase{"http://host/https", true},
                    UrlCase{"file:///tmp/a", true}, UrlCase{"a+b-c.1://x", true},
                    UrlCase{"https://[::1]:8080/", true}, UrlCase{"app://open?a=b://c", true},
                    UrlCase{"https://b\xC3\xBC"
                            "cher.example/",
                            true}));

INSTANTIATE_TEST_SUITE_P(
    Refused, StringUtilsUrl,
    testing::Values(UrlCase{"", false}, UrlCase{"https", false}, UrlCase{"https:", false},
                    UrlCase{"https:/", false}, UrlCase{"https://", false},
                    UrlCase{"://host", false}, UrlCase{"example.com", false},
                    UrlCase{"mailto:a@b", false}, UrlCase{"1http://h", false},
                    UrlCase{"ht_tp://h", false}, UrlCase{" https://h", false},
                    UrlCase{"https://h ", false}, UrlCase{"https://h/a b", false},
                    UrlCase{"https://h\n", false}, UrlCase{"https://h\t", false},
                    UrlCase{"https://h\x7F", false}, UrlCase{"h\xC3\xA4://h", false},
                    UrlCase{std::string("https://h\0a", 11), false},
                    UrlCase{std::string("\0://h", 5), false}));

TEST(StringUtils, JudgesHugeTexts) {
  EXPECT_TRUE(StringUtils::StringIsUrl("https://h/" + std::string(10'000'000, 'a')));
  EXPECT_FALSE(StringUtils::StringIsUrl(std::string(10'000'000, 'a')));
}

TEST(StringUtils, WritesIntegersOfEveryWidth) {
  EXPECT_EQ(StringUtils::ToString(404), "404");
  EXPECT_EQ(StringUtils::ToString(0), "0");
  EXPECT_EQ(StringUtils::ToString(std::numeric_limits<std::int32_t>::min()), "-2147483648");
  EXPECT_EQ(StringUtils::ToString(std::numeric_limits<std::int64_t>::min()),
            "-9223372036854775808");
  EXPECT_EQ(StringUtils::ToString(std::numeric_limits<std::uint64_t>::max()),
            "18446744073709551615");
  EXPECT_EQ(StringUtils::ToString(std::uint8_t{200}), "200");
}

}  // namespace
}  // namespace Velmora
