#include <limits>
#include <stdexcept>

#include <gmock/gmock.h>

#include "QEXCore_iOS/Platform/Date.h"
#include "services/datastore/NativeDataStore.h"
#include "support/FakeHost.h"
#include "support/LogCapture.h"

namespace {

using Platform::NumberType;
using Platform::Value;
using testing::ElementsAre;
using testing::Pair;
using testing::UnorderedElementsAre;
using TestSupport::LogLevel;
using Velmora::NativeDataStore;

const std::string kUmlaut = "\xC3\xBC";
const std::string kNotUtf8 = "\xFF\xFE";

class NativeDataStoreTest : public testing::Test {
 protected:
  TestSupport::FakeHost host_;
  TestSupport::LogCapture log_;
  std::shared_ptr<Platform::UserDefaults> defaults_ = host_.userDefaults->Standard();
  std::shared_ptr<NativeDataStore> store_ = std::make_shared<NativeDataStore>("settings");

  Value Stored(const std::string& key) const {
    return defaults_->ObjectForKey("Korvo.settings." + key);
  }
  void Store(const std::string& key, const Value& value) {
    defaults_->SetObject("Korvo.settings." + key, value);
  }
};

TEST_F(NativeDataStoreTest, GivesBackEachTypeThatItStored) {
  store_->SetInt("int", std::numeric_limits<std::int32_t>::min());
  store_->SetLong("long", std::numeric_limits<std::int64_t>::max());
  store_->SetDouble("double", 0.1);
  store_->SetFloat("float", 0.1F);
  store_->SetBoolean("boolean", true);
  store_->SetString("string", kUmlaut);
  store_->SetVector("vector", {"b", "a", "b"});
  store_->SetMap("map", {{"k", "v"}, {"l", "w"}});

  EXPECT_EQ(store_->GetInt("int", 1), std::numeric_limits<std::int32_t>::min());
  EXPECT_EQ(store_->GetLong("long", 1), std::numeric_limits<std::int64_t>::max());
  EXPECT_EQ(store_->GetDouble("double", 1), 0.1);
  EXPECT_EQ(store_->GetFloat("float", 1), 0.1F);
  EXPECT_TRUE(store_->GetBoolean("boolean", false));
  EXPECT_EQ(store_->GetString("string", ""), kUmlaut);
  EXPECT_THAT(store_->GetVector("vector"), ElementsAre("b", "a", "b"));
  EXPECT_THAT(store_->GetMap("map"), ElementsAre(Pair("k", "v"), Pair("l", "w")));
}

TEST_F(NativeDataStoreTest, StoresEachTypeAsThePlatformObjectOfItsWidth) {
  store_->SetInt("int", 1);
  store_->SetLong("long", 1);
  store_->SetDouble("double", 1);
  store_->SetFloat("float", 1);
  store_->SetBoolean("boolean", true);
  store_->SetString("string", "s");
  store_->SetVector("vector", {"a"});
  store_->SetMap("map", {{"k", "v"}});

  EXPECT_EQ(Stored("int").StorageType(), NumberType::SInt32);
  EXPECT_EQ(Stored("long").StorageType(), NumberType::SInt64);
  EXPECT_EQ(Stored("double").StorageType(), NumberType::Float64);
  EXPECT_EQ(Stored("float").StorageType(), NumberType::Float32);
  EXPECT_TRUE(Stored("boolean").IsBoolean());
  EXPECT_EQ(Stored("string"), Value("s"));
  EXPECT_EQ(Stored("vector"), Value::Array({"a"}));
  EXPECT_EQ(Stored("map"), (Value{{"k", "v"}}));
}

TEST_F(NativeDataStoreTest, GivesTheFallbackForAMissingKey) {
  EXPECT_EQ(store_->GetInt("k", -7), -7);
  EXPECT_EQ(store_->GetLong("k", -7), -7);
  EXPECT_EQ(store_->GetDouble("k", -7.5), -7.5);
  EXPECT_EQ(store_->GetFloat("k", -7.5F), -7.5F);
  EXPECT_TRUE(store_->GetBoolean("k", true));
  EXPECT_FALSE(store_->GetBoolean("k", false));
  EXPECT_EQ(store_->GetString("k", "fallback"), "fallback");
  EXPECT_THAT(store_->GetVector("k"), testing::IsEmpty());
  EXPECT_THAT(store_->GetMap("k"), testing::IsEmpty());
}

TEST_F(NativeDataStoreTest, NeverLetsIntegersFloatingNumbersAndBooleansStandInForOneAnother) {
  store_->SetInt("int", 1);
  EXPECT_FALSE(store_->GetBoolean("int", false));
  store_->SetInt("zero", 0);
  EXPECT_TRUE(store_->GetBoolean("zero", true));
  EXPECT_EQ(store_->GetDouble("int", 9), 9);
  EXPECT_EQ(store_->GetFloat("int", 9), 9);
  EXPECT_EQ(store_->GetString("int", "fallback"), "fallback");

  store_->SetDouble("double", 1);
  EXPECT_EQ(store_->GetInt("double", 9), 9);
  EXPECT_EQ(store_->GetLong("double", 9), 9);
  EXPECT_FALSE(store_->GetBoolean("double", false));

  store_->SetBoolean("boolean", true);
  EXPECT_EQ(store_->GetInt("boolean", 9), 9);
  EXPECT_EQ(store_->GetLong("boolean", 9), 9);
  EXPECT_EQ(store_->GetDouble("boolean", 9), 9);
  EXPECT_EQ(store_->GetFloat("boolean", 9), 9);

  store_->SetString("string", "1");
  EXPECT_EQ(store_->GetInt("string", 9), 9);
  EXPECT_THAT(store_->GetMap("string"), testing::IsEmpty());
  EXPECT_THAT(store_->GetVector("string"), testing::IsEmpty());

  store_->SetMap("map", {{"k", "v"}});
  EXPECT_THAT(store_->GetVector("map"), testing::IsEmpty());
  EXPECT_EQ(store_->GetString("map", "fallback"), "fallback");

  store_->SetVector("vector", {"a"});
  EXPECT_THAT(store_->GetMap("vector"), testing::IsEmpty());
}

TEST_F(NativeDataStoreTest, ReadsIntegersOfOneWidthAsTheOther) {
  store_->SetLong("long", (std::int64_t{1} << 32) + 5);
  store_->SetInt("int", -5);
  EXPECT_EQ(store_->GetInt("long", 9), 5);
  EXPECT_EQ(store_->GetLong("int", 9), -5);

  store_->SetDouble("double", 0.1);
  store_->SetFloat("float", 0.5F);
  EXPECT_EQ(store_->GetFloat("double", 9), 0.1F);
  EXPECT_EQ(store_->GetDouble("float", 9), 0.5);
}

TEST_F(NativeDataStoreTest, AcceptsIntegerTypesSaveCharAndCFIndex) {
  for (int type = 0; type <= 17; ++type) {
    const Value number = Value::Number(static_cast<NumberType>(type), 3);
    const bool isLong = (type >= 1 && type <= 4) || (type >= 8 && type <= 11) || type == 15;
    const bool isDouble = type == 5 || type == 6 || type == 12 || type == 13 || type == 16;
    EXPECT_EQ(NativeDataStore::isTypeOfLong(number), isLong) << type;
    EXPECT_EQ(NativeDataStore::isTypeOfDouble(number), isDouble) << type;
    EXPECT_FALSE(NativeDataStore::isTypeOfBool(number)) << type;
    if (type == 0 || type == 17) continue;
    Store("k", number);
    EXPECT_EQ(store_->GetInt("k", 9), isLong ? 3 : 9) << type;
    EXPECT_EQ(store_->GetLong("k", 9), isLong ? 3 : 9) << type;
    EXPECT_EQ(store_->GetDouble("k", 9), isDouble ? 3 : 9) << type;
    EXPECT_EQ(store_->GetFloat("k", 9), isDouble ? 3 : 9) << type;
  }
}

TEST_F(NativeDataStoreTest, TakesOnlyABooleanForABoolean) {
  EXPECT_TRUE(NativeDataStore::isTypeOfBool(Value(true)));
  EXPECT_FALSE(NativeDataStore::isTypeOfLong(Value(true)));
  EXPECT_FALSE(NativeDataStore::isTypeOfDouble(Value(true)));
  for (const Value& other : {Value(), Value("true"), Value::Null(), Value::Array({true})}) {
    EXPECT_FALSE(NativeDataStore::isTypeOfBool(other)) << other.Description();
    EXPECT_FALSE(NativeDataStore::isTypeOfLong(other)) << other.Description();
    EXPECT_FALSE(NativeDataStore::isTypeOfDouble(other)) << other.Description();
  }
}

TEST_F(NativeDataStoreTest, ReadsForeignElementsOfCollectionsAsTextOrNotAtAll) {
  Store("vector", Value::Array({"a", 1, true, "b"}));
  Store("map", Value{{"text", "v"}, {"number", 1}, {"flag", false}});
  EXPECT_THAT(store_->GetVector("vector"), ElementsAre("a", "", "", "b"));
  EXPECT_THAT(store_->GetMap("map"), ElementsAre(Pair("text", "v")));
}

TEST_F(NativeDataStoreTest, StoresAnEmptyString) {
  store_->SetString("k", "");
  EXPECT_TRUE(store_->Contains("k"));
  EXPECT_EQ(store_->GetString("k", "fallback"), "");
  EXPECT_TRUE(Stored("k").IsString());
}

TEST_F(NativeDataStoreTest, EndsTextAtItsFirstZeroByte) {
  store_->SetString("k", std::string("ab\0cd", 5));
  store_->SetString("nothing", std::string("\0cd", 3));
  EXPECT_EQ(store_->GetString("k", "fallback"), "ab");
  EXPECT_EQ(store_->GetString("nothing", "fallback"), "");
}

TEST_F(NativeDataStoreTest, RemovesTheEntryForTextThatIsNotUtf8) {
  store_->SetString("k", "before");
  store_->SetString("k", kNotUtf8);
  EXPECT_FALSE(store_->Contains("k"));
}

TEST_F(NativeDataStoreTest, KeepsALargeText) {
  const std::string large(10'000'000, 'x');
  store_->SetString("k", large);
  EXPECT_EQ(store_->GetString("k", ""), large);
}

TEST_F(NativeDataStoreTest, LeavesEmptyTextsOutOfAMap) {
  store_->SetMap("map", {{"", "v"}, {"k", ""}, {"l", "w"}, {"m", kNotUtf8}});
  EXPECT_THAT(store_->GetMap("map"), ElementsAre(Pair("l", "w")));
}

TEST_F(NativeDataStoreTest, KeepsEmptyCollectionsAsEntries) {
  store_->SetMap("map", {});
  store_->SetVector("vector", {});
  EXPECT_TRUE(store_->Contains("map"));
  EXPECT_TRUE(store_->Contains("vector"));
}

TEST_F(NativeDataStoreTest, RefusesAVectorWithAnEmptyElementAndKeepsTheFormerOne) {
  store_->SetVector("vector", {"a"});
  EXPECT_THROW(store_->SetVector("vector", {"a", ""}), std::invalid_argument);
  EXPECT_THAT(store_->GetVector("vector"), ElementsAre("a"));
}

TEST_F(NativeDataStoreTest, LogsAndStoresNothingForAnEmptyKey) {
  for (int line = 0; line < 8; ++line) {
    log_.ExpectLine(LogLevel::Debug, "DataStore",
                    "datastore settings - failed to put value (key was empty)");
  }
  store_->SetInt("", 1);
  store_->SetLong("", 1);
  store_->SetDouble("", 1);
  store_->SetFloat("", 1);
  store_->SetBoolean("", true);
  store_->SetString("", "v");
  store_->SetVector("", {"v"});
  store_->SetMap("", {{"k", "v"}});
  EXPECT_THAT(defaults_->KeysWithPrefix(""), testing::IsEmpty());
}

TEST_F(NativeDataStoreTest, LogsAndFindsNothingForAnEmptyKey) {
  defaults_->SetObject("Korvo.settings.", 1);
  for (int line = 0; line < 9; ++line) {
    log_.ExpectLine(LogLevel::Debug, "DataStore",
                    "datastore settings - failed to get value (key was empty)");
  }
  EXPECT_EQ(store_->GetInt("", 9), 9);
  EXPECT_EQ(store_->GetLong("", 9), 9);
  EXPECT_EQ(store_->GetDouble("", 9), 9);
  EXPECT_EQ(store_->GetFloat("", 9), 9);
  EXPECT_TRUE(store_->GetBoolean("", true));
  EXPECT_EQ(store_->GetString("", "fallback"), "fallback");
  EXPECT_THAT(store_->GetVector(""), testing::IsEmpty());
  EXPECT_THAT(store_->GetMap(""), testing::IsEmpty());
  EXPECT_FALSE(store_->Contains(""));
}

TEST_F(NativeDataStoreTest, LogsAndRemovesNothingForAnEmptyKey) {
  defaults_->SetObject("Korvo.settings.", 1);
  log_.ExpectLine(LogLevel::Debug, "DataStore",
                  "datastore settings - failed to remove key (was empty)");
  store_->Remove("");
  EXPECT_THAT(defaults_->KeysWithPrefix(""), ElementsAre("Korvo.settings."));
}

TEST_F(NativeDataStoreTest, NamesTheStoreWithoutANameByNothingInItsLogLines) {
  log_.ExpectLine(LogLevel::Debug, "DataStore", "datastore  - failed to remove key (was empty)");
  std::make_shared<NativeDataStore>("")->Remove("");
}

TEST_F(NativeDataStoreTest, RemovesAnEntry) {
  store_->SetInt("k", 1);
  store_->SetInt("kk", 2);
  EXPECT_TRUE(store_->Contains("k"));
  store_->Remove("k");
  store_->Remove("never there");
  EXPECT_FALSE(store_->Contains("k"));
  EXPECT_TRUE(store_->Contains("kk"));
}

TEST_F(NativeDataStoreTest, SharesAnEntryWithAStoreWhoseNameAndKeyJoinToTheSame) {
  const auto a = std::make_shared<NativeDataStore>("a");
  const auto ab = std::make_shared<NativeDataStore>("a.b");
  a->SetInt("b.c", 5);
  EXPECT_EQ(ab->GetInt("c", 0), 5);
  EXPECT_THAT(defaults_->KeysWithPrefix(""), ElementsAre("Korvo.a.b.c"));
}

TEST_F(NativeDataStoreTest, RemovesAllThatBeginsWithItsPrefix) {
  const auto a = std::make_shared<NativeDataStore>("a");
  const auto ab = std::make_shared<NativeDataStore>("a.b");
  const auto aa = std::make_shared<NativeDataStore>("aa");
  a->SetInt("x", 1);
  ab->SetInt("y", 2);
  aa->SetInt("z", 3);
  defaults_->SetObject("Korvo.a", 4);
  defaults_->SetObject("elsewhere", 5);

  a->RemoveAll();

  EXPECT_THAT(defaults_->KeysWithPrefix(""),
              UnorderedElementsAre("Korvo.aa.z", "Korvo.a", "elsewhere"));
}

TEST_F(NativeDataStoreTest, PutsOneDotIntoTheKeysOfAStoreWithoutAName) {
  const auto nameless = std::make_shared<NativeDataStore>("");
  nameless->SetInt("k", 1);
  store_->SetInt("k", 2);
  defaults_->SetObject("elsewhere", 5);
  EXPECT_THAT(defaults_->KeysWithPrefix(""),
              ElementsAre("Korvo.k", "Korvo.settings.k", "elsewhere"));
  nameless->RemoveAll();
  EXPECT_THAT(defaults_->KeysWithPrefix(""), ElementsAre("elsewhere"));
}

TEST_F(NativeDataStoreTest, GivesAndTakesAnyPlatformObject) {
  const Value date = Value::FromObject(std::make_shared<Platform::Date>(12.5));
  store_->Put("k", date);
  EXPECT_EQ(store_->Get("k"), date);
  store_->Put("k", {});
  EXPECT_TRUE(store_->Get("k").IsAbsent());
}

TEST_F(NativeDataStoreTest, TellsItsLogTag) {
  EXPECT_THAT(store_->ToStringImpl(), testing::HasSubstr("DataStore"));
}

}  // namespace
