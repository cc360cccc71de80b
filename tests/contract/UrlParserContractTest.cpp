#include <optional>
#include <ostream>
#include <string>

#include <gmock/gmock.h>

#include "platform/linux/UriparserUrlParser.h"

namespace {

using Platform::UrlComponents;

template <class Implementation>
class UrlParserContractTest : public testing::Test {
 protected:
  // "scheme|host|path|query", or "refused".
  std::string Parts(const std::string& url) const {
    const auto parts = parser_.Parse(url);
    if (!parts) return "refused";
    return parts->scheme + '|' + parts->host + '|' + parts->path + '|' + parts->query;
  }

  Implementation parser_;
};

using Implementations = testing::Types<Platform::UriparserUrlParser>;
TYPED_TEST_SUITE(UrlParserContractTest, Implementations);

TYPED_TEST(UrlParserContractTest, TakesUrlsApart) {
  const std::pair<const char*, const char*> urls[] = {
      {"https://h/a/b?x=1", "https|h|/a/b|x=1"},
      {"https://h/a/b", "https|h|/a/b|"},
      {"https://h", "https|h||"},
      {"https://h/", "https|h|/|"},
      {"https://h?x", "https|h||x"},
      {"https://h/?", "https|h|/|"},
      {"https://h#f?g", "https|h||"},
      {"https://user:pw@h.example:8443/p#f", "https|h.example|/p|"},
      {"HTTPS://Example.COM/A", "HTTPS|Example.COM|/A|"},
      {"http://192.0.2.1:80/x", "http|192.0.2.1|/x|"},
      {"http://[2001:db8::1]:80/x", "http|2001:db8::1|/x|"},
      {"http://[::]/", "http|::|/|"},
      {"http://[v1.fe80::a]/x", "http|v1.fe80::a|/x|"},
      {"file:///etc/hosts", "file||/etc/hosts|"},
      {"mailto:a@b.example", "mailto||a@b.example|"},
      {"urn:isbn:0451450523", "urn||isbn:0451450523|"},
      {"app-1+x.y://deep/link?a=b&c=d", "app-1+x.y|deep|/link|a=b&c=d"},
      {"data:,", "data||,|"},
      {"x:", "x|||"},
      {"x:/", "x||/|"},
      {"x:/a//b", "x||/a//b|"},
  };
  for (const auto& [url, parts] : urls) EXPECT_EQ(this->Parts(url), parts) << url;
}

TYPED_TEST(UrlParserContractTest, LeavesThePathAsItStands) {
  for (const std::string path :
       {"/", "//", "///", "/a", "/a/", "/a//b", "/a/./b/../c", "/%2Fa/%20", "/;p=1,2/@:$&'()*+=~!",
        "/a/b/c/d/e/f/g/", "//a//", "/.", "/..", "/a:b"}) {
    EXPECT_EQ(this->Parts("s://h" + path), "s|h|" + path + "|");
    EXPECT_EQ(this->Parts("s://h" + path + "?q#f"), "s|h|" + path + "|q");
  }
  for (const std::string path : {"/", "/a", "/a/", "/a//b", "a", "a/", "a//b", "a/b:c", "./a:b"}) {
    EXPECT_EQ(this->Parts("s:" + path), "s||" + path + "|");
  }
}

TYPED_TEST(UrlParserContractTest, LeavesTheQueryAsItStands) {
  for (const std::string query : {"", "a=1&b=2", "?", "/?:@", "a=%20%C3%BC", "a+b", "%00"}) {
    EXPECT_EQ(this->Parts("s://h/p?" + query), "s|h|/p|" + query);
  }
}

TYPED_TEST(UrlParserContractTest, AcceptsRelativeReferences) {
  const std::pair<const char*, const char*> references[] = {
      {"a", "||a|"},         {"/a/b", "||/a/b|"},   {"../a", "||../a|"},
      {"?x=1", "|||x=1"},    {"#f", "|||"},         {"//h/p?q", "|h|/p|q"},
      {"/", "||/|"},         {"./a:b", "||./a:b|"}, {"just text?", "refused"},
      {"a/b?c#d", "||a/b|c"}};
  for (const auto& [url, parts] : references) EXPECT_EQ(this->Parts(url), parts) << url;
}

TYPED_TEST(UrlParserContractTest, RefusesWhatIsNoUrl) {
  for (const char* url : {"",
                          " ",
                          "https://h/a b",
                          " https://h",
                          "https://h ",
                          "https://h/\n",
                          "https://h/%",
                          "x%2",
                          "https://h/%zz",
                          "https://h/%2g",
                          "https://h\\a",
                          "https://h/<a>",
                          "https://h/\"",
                          "a|b",
                          "https://h/{x}",
                          "https://h/^",
                          "https://h/`",
                          "https://m\xc3\xbcnchen.example/",
                          "https://h/\xff",
                          "https://h/\x7f",
                          "1https://h",
                          "://h",
                          ":",
                          "https://[::1",
                          "https://]/",
                          "https://[1::2::3]/",
                          "https://[::1]x/",
                          "https://[12345::]/",
                          "https://h:port/",
                          "https://h:-1/",
                          "https://h/a[b",
                          "https://a@b@c/",
                          "https://h#a#b"}) {
    EXPECT_EQ(this->Parts(url), "refused") << url;
  }
}

TYPED_TEST(UrlParserContractTest, RefusesZeroBytes) {
  EXPECT_EQ(this->Parts(std::string("https://h\0", 10)), "refused");
  EXPECT_EQ(this->Parts(std::string("\0https://h", 10)), "refused");
  EXPECT_EQ(this->Parts(std::string("https://h/a\0b", 13)), "refused");
}

TYPED_TEST(UrlParserContractTest, RefusesPortsThatNoServiceCanHave) {
  for (const char* url : {"s://h:0/", "s://h:65535/", "s://h:0065535/", "s://h:/", "s://h:1"}) {
    EXPECT_NE(this->Parts(url), "refused") << url;
  }
  for (const char* url : {"s://h:65536/", "s://h:99999/", "s://h:4294967297/",
                          "s://h:18446744073709551617", "s://[::1]:65536/"}) {
    EXPECT_EQ(this->Parts(url), "refused") << url;
  }
}

// Every kind of part, ten million characters long.
TYPED_TEST(UrlParserContractTest, SurvivesHugeTexts) {
  constexpr std::size_t kHuge = 10'000'000;
  const auto repeated = [](char character) { return std::string(kHuge, character); };
  const auto isWhole = [&](const std::string& url, const std::string& parts) {
    return this->Parts(url) == parts;
  };
  const std::string letters = repeated('a');
  std::string escapes = repeated('4');
  for (std::size_t start = 0; start + 2 < kHuge; start += 4) escapes[start] = '%';
  EXPECT_TRUE(isWhole("s://h/" + letters, "s|h|/" + letters + "|"));
  EXPECT_TRUE(isWhole("s://h/" + escapes, "s|h|/" + escapes + "|"));
  EXPECT_TRUE(isWhole("s://h?" + letters, "s|h||" + letters));
  EXPECT_TRUE(isWhole("s://" + letters, "s|" + letters + "||"));
  EXPECT_TRUE(isWhole("s://" + letters + "@h", "s|h||"));
  EXPECT_TRUE(isWhole(letters + ":", letters + "|||"));
  EXPECT_TRUE(isWhole(letters, "||" + letters + "|"));
  EXPECT_EQ(this->Parts("s://h#" + repeated('f')), "s|h||");
  EXPECT_EQ(this->Parts("s://h:" + repeated('9')), "refused");
  EXPECT_EQ(this->Parts("s://h:" + repeated('0') + "1"), "s|h||");
  EXPECT_EQ(this->Parts(repeated('[')), "refused");
  EXPECT_EQ(this->Parts(repeated(' ')), "refused");
  EXPECT_EQ(this->Parts("s://[" + repeated(':')), "refused");
}

TYPED_TEST(UrlParserContractTest, SurvivesHugeNumbersOfSegments) {
  const std::string path(1'000'000, '/');
  EXPECT_TRUE(this->Parts("s://h" + path) == "s|h|" + path + "|");
  std::string segments;
  for (int segment = 0; segment < 500'000; ++segment) segments += "/a";
  EXPECT_TRUE(this->Parts("s://h" + segments) == "s|h|" + segments + "|");
}

}  // namespace
