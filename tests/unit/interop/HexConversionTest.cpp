#include <iomanip>
#include <ios>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "interop/HexConversion.h"

namespace Velmora {
namespace {

using Bytes = std::vector<std::uint8_t>;
using std::string_view_literals::operator""sv;

Bytes BytesOf(std::string_view text) { return HexToBin(text.data(), text.size()); }

std::string HexOf(const Bytes& bytes) { return BinToHex(bytes.data(), bytes.size()); }

TEST(HexToBin, ReadsPairsOfDigits) {
  EXPECT_EQ(BytesOf("0a0B"), (Bytes{0x0A, 0x0B}));
  EXPECT_EQ(BytesOf("FFff00"), (Bytes{0xFF, 0xFF, 0x00}));
}

TEST(HexToBin, IgnoresAnOddCharacterAtTheEnd) {
  EXPECT_EQ(BytesOf("abc"), (Bytes{0xAB}));
  EXPECT_EQ(BytesOf("a"), Bytes{});
  EXPECT_EQ(BytesOf("abz"), (Bytes{0xAB}));
}

TEST(HexToBin, GivesNothingForNoCharacters) {
  EXPECT_EQ(BytesOf(""), Bytes{});
  EXPECT_EQ(HexToBin(nullptr, 0), Bytes{});
  EXPECT_EQ(HexToBin("ab", 0), Bytes{});
}

TEST(HexToBin, EndsAtTheLengthGiven) { EXPECT_EQ(HexToBin("0102", 3), (Bytes{0x01})); }

TEST(HexToBin, EndsAtTheFirstZeroByte) {
  EXPECT_EQ(BytesOf("01\0"
                    "02"sv),
            (Bytes{0x01}));
  EXPECT_EQ(BytesOf("010\0"
                    "2"sv),
            (Bytes{0x01}));
  EXPECT_EQ(BytesOf("\0"
                    "01"sv),
            Bytes{});
}

TEST(HexToBin, ReadsAPairAsTheStandardConversionDoes) {
  EXPECT_EQ(BytesOf("1z"), (Bytes{0x01}));
  EXPECT_EQ(BytesOf(" 1"), (Bytes{0x01}));
  EXPECT_EQ(BytesOf("\t2\n3"), (Bytes{0x02, 0x03}));
  EXPECT_EQ(BytesOf("+f"), (Bytes{0x0F}));
  EXPECT_EQ(BytesOf("-1"), (Bytes{0xFF}));
  EXPECT_EQ(BytesOf("0x"), (Bytes{0x00}));
}

TEST(HexToBin, ThrowsForAPairWithoutADigit) {
  EXPECT_THROW(BytesOf("zz"), std::invalid_argument);
  EXPECT_THROW(BytesOf("01 +"), std::invalid_argument);
  EXPECT_THROW(BytesOf("  "), std::invalid_argument);
  EXPECT_THROW(BytesOf("\xC3\xA9"), std::invalid_argument);
}

TEST(HexToBin, ReadsTenMegabytes) {
  const std::string text(10'000'000, 'f');
  EXPECT_EQ(BytesOf(text), Bytes(5'000'000, 0xFF));
}

TEST(BinToHex, PadsTheFirstByteOnly) {
  EXPECT_EQ(HexOf({0x0A, 0x0B}), "0AB");
  EXPECT_EQ(HexOf({0xFF, 0x01}), "FF1");
  EXPECT_EQ(HexOf({0x00, 0x00}), "000");
  EXPECT_EQ(HexOf({0x12, 0x34, 0x5, 0x67}), "1234567");
}

TEST(BinToHex, GivesNothingForNoBytes) {
  EXPECT_EQ(HexOf({}), "");
  EXPECT_EQ(BinToHex(nullptr, 0), "");
}

// A stream forgets its field width with the first number that it writes.
TEST(BinToHex, WritesWhatAStreamWithAWidthSetOnceWould) {
  Bytes bytes;
  for (int i = 0; i < 256; ++i) bytes.push_back(static_cast<std::uint8_t>(i * 7));
  for (std::size_t start = 0; start < bytes.size(); ++start) {
    const Bytes part(bytes.begin() + static_cast<std::ptrdiff_t>(start), bytes.end());
    std::ostringstream stream;
    stream << std::hex << std::uppercase << std::setfill('0') << std::setw(2);
    for (const std::uint8_t byte : part) stream << static_cast<unsigned>(byte);
    ASSERT_EQ(HexOf(part), stream.str());
  }
}

TEST(ToHexFromEncodedData, GivesTheTextOfABuffer) {
  EXPECT_EQ(ToHexFromEncodedData(Platform::Value::FromData({0x00, 0x00})), "000");
  EXPECT_EQ(ToHexFromEncodedData(Platform::Value::FromData({0xFF, 0x01})), "FF1");
}

TEST(ToHexFromEncodedData, GivesNothingForAnEmptyOrAbsentBuffer) {
  EXPECT_EQ(ToHexFromEncodedData(Platform::Value::FromData({})), std::nullopt);
  EXPECT_EQ(ToHexFromEncodedData({}), std::nullopt);
  EXPECT_EQ(ToHexFromEncodedData("0A"), std::nullopt) << "text is no buffer";
}

}  // namespace
}  // namespace Velmora
