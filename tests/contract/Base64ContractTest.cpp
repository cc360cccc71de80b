#include <optional>
#include <random>
#include <string>

#include <gmock/gmock.h>

#include "platform/linux/OpenSslBase64.h"

namespace {

using testing::Optional;

template <class Implementation>
class Base64ContractTest : public testing::Test {
 protected:
  Implementation base64_;
};

using Implementations = testing::Types<Platform::OpenSslBase64>;
TYPED_TEST_SUITE(Base64ContractTest, Implementations);

std::string RandomBytes(std::size_t count) {
  std::mt19937 random(static_cast<unsigned>(count));
  std::string bytes(count, '\0');
  for (char& byte : bytes) byte = static_cast<char>(random());
  return bytes;
}

TYPED_TEST(Base64ContractTest, EncodesAndDecodesThePublishedValues) {
  const std::pair<const char*, const char*> values[] = {{"", ""},
                                                        {"f", "Zg=="},
                                                        {"fo", "Zm8="},
                                                        {"foo", "Zm9v"},
                                                        {"foob", "Zm9vYg=="},
                                                        {"fooba", "Zm9vYmE="},
                                                        {"foobar", "Zm9vYmFy"}};
  for (const auto& [bytes, text] : values) {
    EXPECT_EQ(this->base64_.Encode(bytes), text);
    EXPECT_THAT(this->base64_.Decode(text), Optional(std::string(bytes)));
  }
}

TYPED_TEST(Base64ContractTest, UsesTheStandardAlphabet) {
  const std::string bytes("\xfb\xef\xff\x00\x10", 5);
  EXPECT_EQ(this->base64_.Encode(bytes), "++//ABA=");
  EXPECT_THAT(this->base64_.Decode("++//ABA="), Optional(bytes));
  EXPECT_FALSE(this->base64_.Decode("--__ABA="));
}

TYPED_TEST(Base64ContractTest, RefusesCharactersOutsideTheAlphabet) {
  for (const char* text : {"Zm 9", "Zm9v ", " Zm9v", "Zm9v\n", "Zm9vYg==\n", "Zm\r\n9v==", "\tZm9",
                           "Zm9-", "Zm9*", "Zm9\xe9", "    ", "----", "Zm9v----"}) {
    EXPECT_FALSE(this->base64_.Decode(text)) << text;
  }
  EXPECT_FALSE(this->base64_.Decode(std::string_view("Zm9\0", 4)));
  EXPECT_FALSE(this->base64_.Decode(std::string_view("Zm9v\0\0\0\0", 8)));
}

TYPED_TEST(Base64ContractTest, RefusesEverySingleByteOutsideTheAlphabet) {
  const std::string alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  for (int byte = 0; byte < 256; ++byte) {
    const std::string text = std::string("AA") + static_cast<char>(byte) + "A";
    EXPECT_EQ(this->base64_.Decode(text).has_value(),
              alphabet.find(static_cast<char>(byte)) != std::string::npos)
        << byte;
  }
}

TYPED_TEST(Base64ContractTest, RefusesMissingOrMisplacedPadding) {
  for (const char* text : {"Z", "Zg", "Zg=", "Zm8", "Zm9vY", "Zm9vYg", "=", "==", "===", "====",
                           "Z===", "Zg==Zg==", "Zg=g", "=g==", "Zm9v====", "Zm9v=", "Zm8==="}) {
    EXPECT_FALSE(this->base64_.Decode(text)) << text;
  }
}

TYPED_TEST(Base64ContractTest, RestoresWhatItEncodedWhateverTheLength) {
  constexpr std::size_t kMebibyte = 1 << 20;
  for (const std::size_t length : {1UL, 2UL, 3UL, 100UL, 3 * kMebibyte - 1, 3 * kMebibyte,
                                   3 * kMebibyte + 1, 3 * kMebibyte + 2, 10 * kMebibyte}) {
    const std::string bytes = RandomBytes(length);
    const std::string text = this->base64_.Encode(bytes);
    EXPECT_EQ(text.size(), (length + 2) / 3 * 4);
    EXPECT_TRUE(this->base64_.Decode(text) == bytes) << length;
  }
}

TYPED_TEST(Base64ContractTest, FindsOneBadCharacterInTenMegabytes) {
  std::string text(10'000'000, 'A');
  text[9'999'990] = '.';
  EXPECT_FALSE(this->base64_.Decode(text));
}

}  // namespace
