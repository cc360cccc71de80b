#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "BinaryPlist.h"
#include "QEXCore_iOS/Platform/Date.h"
#include "platform/linux/PropertyList.h"

namespace {

using Platform::kMaximumPropertyListDepth;
using Platform::kMaximumPropertyListSize;
using Platform::NumberType;
using Platform::ParsePropertyList;
using Platform::Value;

// What the one object of these bytes reads as.
Value Read(const std::string& object) {
  BinaryPlist list;
  return ParsePropertyList(list.Bytes(list.Add(object)));
}

std::string DoubleBytes(double number) {
  std::uint64_t bits = 0;
  std::memcpy(&bits, &number, sizeof bits);
  return BinaryPlist::BigEndian(bits, 8);
}

std::string FloatBytes(float number) {
  std::uint32_t bits = 0;
  std::memcpy(&bits, &number, sizeof bits);
  return BinaryPlist::BigEndian(bits, 4);
}

// An array in an array, and so on, `depth` deep.
std::string Nested(int depth) {
  BinaryPlist list(4);
  std::uint64_t inner = list.AddArray({});
  for (int i = 1; i < depth; ++i) inner = list.AddArray({inner});
  return list.Bytes(inner);
}

// {"name": "Shop", "list": [true, 7]}
std::string SoundList() {
  BinaryPlist list;
  const auto name = list.AddAscii("name");
  const auto shop = list.AddAscii("Shop");
  const auto key = list.AddAscii("list");
  const auto yes = list.Add("\x09");
  const auto seven = list.Add("\x10\x07");
  const auto array = list.AddArray({yes, seven});
  return list.Bytes(list.AddDictionary({name, key}, {shop, array}));
}

TEST(BinaryPropertyList, ReadsDictionariesAndArrays) {
  const Value value = ParsePropertyList(SoundList());
  EXPECT_EQ(value, (Value{{"name", "Shop"}, {"list", Value::Array({true, 7})}}));
}

TEST(BinaryPropertyList, ReadsBooleans) {
  EXPECT_EQ(Read("\x09"), Value(true));
  EXPECT_EQ(Read("\x08"), Value(false));
}

TEST(BinaryPropertyList, ReadsIntegersOfEveryWidth) {
  EXPECT_EQ(Read("\x10\xFF"), Value(255));
  EXPECT_EQ(Read("\x11\x01" + std::string(1, '\0')), Value(256));
  EXPECT_EQ(Read("\x12" + BinaryPlist::BigEndian(70'000, 4)), Value(70'000));
  EXPECT_EQ(Read("\x13" + BinaryPlist::BigEndian(std::uint64_t{1} << 40, 8)),
            Value(std::int64_t{1} << 40));
  EXPECT_EQ(Read("\x13" + std::string(8, '\xFF')), Value(-1));
  EXPECT_EQ(Read("\x13" + std::string(8, '\xFF')).StorageType(), NumberType::SInt64);
}

TEST(BinaryPropertyList, ReadsReals) {
  EXPECT_EQ(Read("\x23" + DoubleBytes(-2.5)), Value(-2.5));
  EXPECT_EQ(Read("\x22" + FloatBytes(0.5F)), Value(0.5));
  EXPECT_EQ(Read("\x23" + DoubleBytes(2)).StorageType(), NumberType::Float64);
}

TEST(BinaryPropertyList, ReadsDates) {
  const auto date = Read("\x33" + DoubleBytes(1.5)).AsObjectOf<Platform::Date>();
  ASSERT_NE(date, nullptr);
  EXPECT_NEAR(date->SecondsSince1970(), 978'307'201.5, 1e-5);
}

TEST(BinaryPropertyList, ReadsDatesBefore2001) {
  const auto date = Read("\x33" + DoubleBytes(-10.25)).AsObjectOf<Platform::Date>();
  ASSERT_NE(date, nullptr);
  EXPECT_NEAR(date->SecondsSince1970(), 978'307'189.75, 1e-5);
}

TEST(BinaryPropertyList, ReadsData) {
  EXPECT_EQ(Read(std::string("\x43"
                             "a\0b",
                             4))
                .AsData(),
            (std::vector<std::uint8_t>{'a', 0, 'b'}));
  EXPECT_TRUE(Read("\x40").IsData());
}

TEST(BinaryPropertyList, ReadsTexts) {
  EXPECT_EQ(Read("\x54Shop"), Value("Shop"));
  EXPECT_EQ(Read(BinaryPlist::Marker(0x5, 1000) + std::string(1000, 'x')),
            Value(std::string(1000, 'x')));
  EXPECT_EQ(Read("\x62" + BinaryPlist::BigEndian(0xE4, 2) + BinaryPlist::BigEndian(0x20AC, 2)),
            Value("\u00e4\u20ac"));
  EXPECT_EQ(Read("\x62" + BinaryPlist::BigEndian(0xD83D, 2) + BinaryPlist::BigEndian(0xDE00, 2)),
            Value("\U0001F600"));
}

TEST(BinaryPropertyList, ReadsArchiveReferencesAsNumbers) { EXPECT_EQ(Read("\x80\x05"), Value(5)); }

TEST(BinaryPropertyList, LeavesOutTextsThatAreNoUtf8) {
  BinaryPlist list;
  const auto good = list.AddAscii("good");
  const auto bad = list.AddAscii("\xFF\xFE");
  const auto array = list.AddArray({good, bad, good});
  EXPECT_EQ(ParsePropertyList(list.Bytes(array)), Value::Array({"good", "good"}));
}

TEST(BinaryPropertyList, RefusesAListCutOffAnywhere) {
  const std::string whole = SoundList();
  for (std::size_t length = 0; length < whole.size(); ++length) {
    EXPECT_TRUE(ParsePropertyList(whole.substr(0, length)).IsAbsent()) << length;
  }
}

TEST(BinaryPropertyList, SurvivesEveryChangeOfOneByte) {
  const std::string whole = SoundList();
  for (std::size_t position = 0; position < whole.size(); ++position) {
    for (int byte = 0; byte < 256; ++byte) {
      std::string changed = whole;
      changed[position] = static_cast<char>(byte);
      EXPECT_LE(ParsePropertyList(changed).Count(), whole.size());
    }
  }
}

TEST(BinaryPropertyList, SurvivesRandomBytesBetweenHeaderAndTrailer) {
  std::mt19937 random(20240229);
  for (int round = 0; round < 20'000; ++round) {
    std::string bytes = "bplist00";
    const std::size_t objects = 1 + random() % 16;
    for (std::size_t i = 0; i < 64; ++i) bytes += static_cast<char>(random());
    const std::size_t tableOffset = bytes.size();
    for (std::size_t i = 0; i < objects; ++i) bytes += static_cast<char>(8 + random() % 64);
    bytes += BinaryPlist::Trailer(1, 1, objects, random() % objects, tableOffset);
    const Value value = ParsePropertyList(bytes);
    EXPECT_LE(value.Count(), 64U);
  }
}

TEST(BinaryPropertyList, RefusesAListThatContainsItself) {
  BinaryPlist list;
  const auto array = list.AddArray({0});
  EXPECT_TRUE(ParsePropertyList(list.Bytes(array)).IsAbsent());
}

TEST(BinaryPropertyList, RefusesACycleOfTwo) {
  BinaryPlist list;
  list.AddArray({1});
  const auto key = list.AddDictionary({2}, {0});
  list.AddAscii("key");
  EXPECT_TRUE(ParsePropertyList(list.Bytes(key)).IsAbsent());
}

TEST(BinaryPropertyList, ReadsListsAsDeepAsTheLimit) {
  EXPECT_TRUE(ParsePropertyList(Nested(kMaximumPropertyListDepth)).IsArray());
  EXPECT_TRUE(ParsePropertyList(Nested(kMaximumPropertyListDepth + 1)).IsAbsent());
}

TEST(BinaryPropertyList, RefusesDeepNesting) {
  EXPECT_TRUE(ParsePropertyList(Nested(1'000)).IsAbsent());
  EXPECT_TRUE(ParsePropertyList(Nested(100'000)).IsAbsent());
}

TEST(BinaryPropertyList, RefusesAListThatUnfoldsToAHugeTree) {
  BinaryPlist list;
  std::uint64_t inner = list.AddAscii("x");
  for (int i = 0; i < 60; ++i) inner = list.AddArray({inner, inner});
  EXPECT_TRUE(ParsePropertyList(list.Bytes(inner)).IsAbsent());
}

TEST(BinaryPropertyList, RefusesALargeTextThatIsReferredToManyTimes) {
  BinaryPlist list(2);
  const auto text = list.AddAscii(std::string(500'000, 'x'));
  const auto array = list.AddArray(std::vector<std::uint64_t>(10'000, text));
  EXPECT_TRUE(ParsePropertyList(list.Bytes(array)).IsAbsent());
}

TEST(BinaryPropertyList, RefusesCountsBeyondTheFile) {
  constexpr std::uint64_t kHuge = std::numeric_limits<std::uint64_t>::max();
  for (const int kind : {0x4, 0x5, 0x6, 0xA, 0xC, 0xD}) {
    for (const std::uint64_t count :
         {kHuge, kHuge / 2, kHuge / 2 + 1, std::uint64_t{1} << 32, std::uint64_t{100}}) {
      EXPECT_TRUE(Read(BinaryPlist::Marker(kind, count)).IsAbsent()) << kind << ' ' << count;
    }
  }
}

TEST(BinaryPropertyList, RefusesNumbersThatReachBeyondTheirPlace) {
  EXPECT_TRUE(Read("\x13").IsAbsent());
  EXPECT_TRUE(Read("\x14" + std::string(15, '\1')).IsAbsent());
  EXPECT_TRUE(Read("\x1F" + std::string(64, '\1')).IsAbsent());
  EXPECT_TRUE(Read("\x23").IsAbsent());
  EXPECT_TRUE(Read("\x2F" + std::string(64, '\1')).IsAbsent());
  EXPECT_TRUE(Read("\x33").IsAbsent());
  EXPECT_TRUE(Read("\x30" + std::string(8, '\1')).IsAbsent());
  EXPECT_TRUE(Read("\x87").IsAbsent());
}

TEST(BinaryPropertyList, RefusesUnknownKindsOfObjects) {
  for (const char* object : {"\x01", "\x0F", "\x70", "\x90", "\xB0", "\xC0", "\xE0", "\xF0"}) {
    EXPECT_TRUE(Read(object).IsAbsent());
  }
}

TEST(BinaryPropertyList, RefusesAKeyThatIsNoText) {
  BinaryPlist list;
  const auto number = list.Add("\x10\x07");
  EXPECT_TRUE(ParsePropertyList(list.Bytes(list.AddDictionary({number}, {number}))).IsAbsent());
}

TEST(BinaryPropertyList, RefusesTrailersThatLie) {
  constexpr std::uint64_t kHuge = std::numeric_limits<std::uint64_t>::max();
  const std::string start = std::string("bplist00\x09", 9) + '\x08';
  const auto read = [&](int offsetWidth, int referenceWidth, std::uint64_t objects,
                        std::uint64_t root, std::uint64_t table) {
    return ParsePropertyList(
        start + BinaryPlist::Trailer(offsetWidth, referenceWidth, objects, root, table));
  };
  EXPECT_EQ(read(1, 1, 1, 0, 9), Value(true));
  EXPECT_TRUE(read(0, 1, 1, 0, 9).IsAbsent());
  EXPECT_TRUE(read(1, 0, 1, 0, 9).IsAbsent());
  EXPECT_TRUE(read(9, 1, 1, 0, 9).IsAbsent());
  EXPECT_TRUE(read(255, 255, 1, 0, 9).IsAbsent());
  EXPECT_TRUE(read(8, 1, 1, 0, 9).IsAbsent());
  EXPECT_TRUE(read(1, 1, 0, 0, 9).IsAbsent());
  EXPECT_TRUE(read(1, 1, 2, 0, 9).IsAbsent());
  EXPECT_TRUE(read(1, 1, kHuge, 0, 9).IsAbsent());
  EXPECT_TRUE(read(8, 1, kHuge / 8 + 1, 0, 9).IsAbsent());
  EXPECT_TRUE(read(1, 1, 1, 1, 9).IsAbsent());
  EXPECT_TRUE(read(1, 1, 1, kHuge, 9).IsAbsent());
  EXPECT_TRUE(read(1, 1, 1, 0, 0).IsAbsent());
  EXPECT_TRUE(read(1, 1, 1, 0, 8).IsAbsent());
  EXPECT_TRUE(read(1, 1, 1, 0, kHuge).IsAbsent());
}

TEST(BinaryPropertyList, RefusesListsBeyondTheSizeLimit) {
  BinaryPlist list;
  const auto text = list.AddAscii(std::string(kMaximumPropertyListSize - 100, 'x'));
  EXPECT_TRUE(ParsePropertyList(list.Bytes(text)).IsString());
  BinaryPlist larger;
  const auto largerText = larger.AddAscii(std::string(kMaximumPropertyListSize, 'x'));
  EXPECT_TRUE(ParsePropertyList(larger.Bytes(largerText)).IsAbsent());
}

}  // namespace
