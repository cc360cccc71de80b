#include <random>
#include <string>

#include <gtest/gtest.h>

#include "QEXCore_iOS/Platform/Date.h"
#include "QEXCore_iOS/Platform/UserDefaults.h"
#include "platform/linux/SqliteUserDefaultsCodec.h"

namespace {

using Bytes = std::vector<std::uint8_t>;
using Platform::NumberType;
using Platform::SqliteUserDefaultsBlob;
using Platform::UserDefaults;
using Platform::Value;

constexpr std::int64_t kString = 1;
constexpr std::int64_t kNumber = 2;
constexpr std::int64_t kBoolean = 3;
constexpr std::int64_t kArray = 6;
constexpr std::int64_t kDictionary = 7;

SqliteUserDefaultsBlob Encoded(const Value& value) {
  std::string_view objection;
  auto blob = Platform::EncodeUserDefaultsValue(value, objection);
  EXPECT_TRUE(blob) << objection;
  return blob.value_or(SqliteUserDefaultsBlob{});
}

std::string ObjectionTo(const Value& value) {
  std::string_view objection;
  EXPECT_FALSE(Platform::EncodeUserDefaultsValue(value, objection));
  return std::string(objection);
}

bool CanDecode(std::int64_t type, const Bytes& bytes) {
  return Platform::DecodeUserDefaultsValue(type, bytes).has_value();
}

// Holds one of everything.
Value Sample() {
  return {{"text", "\xC3\xBC"},
          {"number", 7},
          {"real", 0.5},
          {"flag", true},
          {"data", Value::FromData({0, 255})},
          {"date", Value::FromObject(std::make_shared<Platform::Date>(12.5))},
          {"list", Value::Array({1, "two", Value::Array(), Value{{"k", Value::Array({true})}}})}};
}

void Append(Bytes& bytes, const Bytes& more) {
  bytes.insert(bytes.end(), more.begin(), more.end());
}

TEST(SqliteUserDefaultsCodec, GivesBackWhatItWasGiven) {
  const SqliteUserDefaultsBlob blob = Encoded(Sample());
  EXPECT_EQ(Platform::DecodeUserDefaultsValue(blob.type, blob.bytes), Sample());
}

TEST(SqliteUserDefaultsCodec, KeepsToItsFormat) {
  EXPECT_EQ(Encoded("ab").type, kString);
  EXPECT_EQ(Encoded("ab").bytes, (Bytes{1, 2, 0, 0, 0, 'a', 'b'}));
  EXPECT_EQ(Encoded(true).type, kBoolean);
  EXPECT_EQ(Encoded(true).bytes, (Bytes{1, 1}));
  EXPECT_EQ(Encoded(std::int32_t{-2}).type, kNumber);
  EXPECT_EQ(Encoded(std::int32_t{-2}).bytes,
            (Bytes{1, 3, 0, 0, 0, 0xFE, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}));
  EXPECT_EQ(Encoded(1.0).bytes, (Bytes{1, 6, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xF0, 0x3F}));
  EXPECT_EQ(Encoded(Value::Array({false})).type, kArray);
  EXPECT_EQ(Encoded(Value::Array({false})).bytes, (Bytes{1, 1, 0, 0, 0, 3, 0}));
  EXPECT_EQ(Encoded(Value{{"k", true}}).type, kDictionary);
  EXPECT_EQ(Encoded(Value{{"k", true}}).bytes, (Bytes{1, 1, 0, 0, 0, 1, 0, 0, 0, 'k', 3, 1}));
}

TEST(SqliteUserDefaultsCodec, KeepsNumbersOfTypesBeyondThePlatforms) {
  for (const int type : {0, 17, -1}) {
    const SqliteUserDefaultsBlob blob = Encoded(Value::Number(static_cast<NumberType>(type), 5));
    const auto value = Platform::DecodeUserDefaultsValue(blob.type, blob.bytes);
    ASSERT_TRUE(value);
    EXPECT_EQ(value->StorageType(), static_cast<NumberType>(type));
    EXPECT_EQ(value->AsInt32(), 5);
  }
}

TEST(SqliteUserDefaultsCodec, RefusesToDecodeACutBlob) {
  const SqliteUserDefaultsBlob blob = Encoded(Sample());
  for (std::size_t length = 0; length < blob.bytes.size(); ++length) {
    const auto end = blob.bytes.begin() + static_cast<std::ptrdiff_t>(length);
    EXPECT_FALSE(CanDecode(blob.type, Bytes(blob.bytes.begin(), end))) << length;
  }
}

TEST(SqliteUserDefaultsCodec, RefusesToDecodeBytesBehindTheValue) {
  SqliteUserDefaultsBlob blob = Encoded(Sample());
  blob.bytes.push_back(0);
  EXPECT_FALSE(CanDecode(blob.type, blob.bytes));
}

TEST(SqliteUserDefaultsCodec, RefusesToDecodeUnknownVersionsAndTypes) {
  EXPECT_TRUE(CanDecode(kBoolean, {1, 1}));
  EXPECT_FALSE(CanDecode(kBoolean, {0, 1}));
  EXPECT_FALSE(CanDecode(kBoolean, {2, 1}));
  EXPECT_FALSE(CanDecode(kBoolean, {1, 2}));
  for (const std::int64_t type : {std::int64_t{-1}, std::int64_t{0}, std::int64_t{8},
                                  std::int64_t{256 + kBoolean}, std::int64_t{1} << 40}) {
    EXPECT_FALSE(CanDecode(type, {1, 1})) << type;
  }
  EXPECT_FALSE(CanDecode(kArray, {1, 1, 0, 0, 0, 0, 0}));
  EXPECT_FALSE(CanDecode(kArray, {1, 1, 0, 0, 0, 8, 0}));
}

TEST(SqliteUserDefaultsCodec, TrustsNoLengthAndNoCount) {
  EXPECT_FALSE(CanDecode(kString, {1, 0xFF, 0xFF, 0xFF, 0xFF}));
  EXPECT_FALSE(CanDecode(kString, {1, 3, 0, 0, 0, 'a', 'b'}));
  EXPECT_FALSE(CanDecode(kArray, {1, 0xFF, 0xFF, 0xFF, 0xFF}));
  EXPECT_FALSE(CanDecode(kDictionary, {1, 0xFF, 0xFF, 0xFF, 0xFF, 0, 0, 0, 0, 3, 1}));
}

TEST(SqliteUserDefaultsCodec, UsesNoStackForNesting) {
  Bytes bytes{1};
  for (int depth = 0; depth < 100'000; ++depth) Append(bytes, {1, 0, 0, 0, kArray});
  Append(bytes, {0, 0, 0, 0});
  EXPECT_FALSE(CanDecode(kArray, bytes));

  Bytes deepest{1};
  for (int depth = 1; depth < UserDefaults::kMaximumDepth; ++depth) {
    Append(deepest, {1, 0, 0, 0, kArray});
  }
  Append(deepest, {0, 0, 0, 0});
  EXPECT_TRUE(CanDecode(kArray, deepest));
}

TEST(SqliteUserDefaultsCodec, SaysWhyItRefusesToEncode) {
  Value deep = Value::Array();
  for (int depth = 0; depth < UserDefaults::kMaximumDepth; ++depth) deep = Value::Array({deep});
  Value oddKey = Value::Dictionary();
  oddKey.Set(1, "v");
  EXPECT_EQ(ObjectionTo(deep), "it nests too deep");
  EXPECT_EQ(ObjectionTo(oddKey), "a key in it is not a string");
  EXPECT_EQ(ObjectionTo(Value::Null()), "it is, or holds, what user defaults do not keep");
}

TEST(SqliteUserDefaultsCodec, RefusesToEncodeWhatIsLargerThanItsLimit) {
  constexpr std::size_t kLimit = Platform::kMaximumUserDefaultsBlob;
  EXPECT_EQ(Encoded(std::string(kLimit - 5, 'x')).bytes.size(), kLimit);
  EXPECT_EQ(ObjectionTo(std::string(kLimit - 4, 'x')), "it is too large");
  EXPECT_EQ(ObjectionTo(Value::Array({std::string(kLimit / 2, 'x'), std::string(kLimit / 2, 'y')})),
            "it is too large");
  // Small as it stands in memory, and beyond all bounds when it is written out.
  Value shared = Value::Array({true, true});
  for (int level = 0; level < 40; ++level) shared = Value::Array({shared, shared});
  EXPECT_EQ(ObjectionTo(shared), "it is too large");
}

TEST(SqliteUserDefaultsCodec, SurvivesAnyChangeOfABlob) {
  const SqliteUserDefaultsBlob blob = Encoded(Sample());
  std::mt19937 random(20240229);
  int decoded = 0;
  for (int round = 0; round < 20'000; ++round) {
    Bytes bytes = blob.bytes;
    for (std::size_t change = 0; change <= random() % 3; ++change) {
      bytes[random() % bytes.size()] = static_cast<std::uint8_t>(random());
    }
    const auto type = static_cast<std::int64_t>(random() % 8);
    const auto value = Platform::DecodeUserDefaultsValue(round % 2 == 0 ? blob.type : type, bytes);
    if (!value) continue;
    ++decoded;
    EXPECT_EQ(Platform::DecodeUserDefaultsValue(Encoded(*value).type, Encoded(*value).bytes),
              *value);
  }
  EXPECT_GT(decoded, 0);
}

}  // namespace
