#include <clocale>
#include <cmath>
#include <cstdlib>
#include <limits>

#include "DatabaseFixture.h"

namespace {

using namespace DatabaseTests;
using Velmora::Query;
using Velmora::Variant;

// What comes back of a value, and as what SQLite keeps it.
class DatabaseValues : public DatabaseFixture {
 protected:
  DatabaseValues() { Execute(database_, "CREATE TABLE t (plain, i INTEGER, r REAL, t TEXT)"); }

  // The one row's columns after `value` went into `column`.
  std::vector<std::string> Stored(const std::string& column, const std::shared_ptr<Variant>& value,
                                  const std::vector<std::string>& columns) {
    database_.Delete("t", "", {});
    EXPECT_TRUE(database_.Insert("t", {{column, value}}));
    const Rows rows = Select(database_, Query("t", columns));
    EXPECT_EQ(rows.size(), 1U);
    return rows.empty() ? std::vector<std::string>() : rows.front();
  }

  // As text, and its type where no column type converts it.
  std::vector<std::string> Stored(const std::shared_ptr<Variant>& value) {
    return Stored("plain", value, {"plain", "typeof(plain)"});
  }

  using Cells = std::vector<std::string>;
};

TEST_F(DatabaseValues, IntegersAndLongsAreKeptAsIntegers) {
  EXPECT_EQ(Stored(Variant::FromInteger(-7)), Cells({"-7", "integer"}));
  EXPECT_EQ(Stored(Variant::FromInteger(std::numeric_limits<int>::min())),
            Cells({"-2147483648", "integer"}));
  EXPECT_EQ(Stored(Variant::FromLong(7)), Cells({"7", "integer"}));
}

TEST_F(DatabaseValues, IntegersBeyond32BitsAreKeptInFullAndReadCut) {
  const auto large = Variant::FromLong(5'000'000'000);
  EXPECT_EQ(Stored(large), Cells({"705032704", "integer"}));
  EXPECT_EQ(Stored("i", large, {"i", "CAST(i AS TEXT)"}), Cells({"705032704", "5000000000"}));
  EXPECT_EQ(Stored(Variant::FromLong(std::numeric_limits<std::int64_t>::max()))[0], "-1");
  EXPECT_EQ(Stored(Variant::FromLong(2'147'483'648))[0], "-2147483648");

  const auto result = database_.RunQuery(std::make_shared<Query>("t"));
  EXPECT_EQ(result->GetInt(0), std::numeric_limits<std::int32_t>::min());
  EXPECT_EQ(result->GetLong(0), std::numeric_limits<std::int32_t>::min());
}

TEST_F(DatabaseValues, DoublesAreReadWithSixDecimals) {
  EXPECT_EQ(Stored(Variant::FromDouble(0.1)), Cells({"0.100000", "real"}));
  EXPECT_EQ(Stored(Variant::FromDouble(-1e-9)), Cells({"-0.000000", "real"}));
  EXPECT_EQ(Stored(Variant::FromDouble(3)), Cells({"3.000000", "real"}));
  EXPECT_EQ(Stored(Variant::FromDouble(1e300))[0].size(), 308U);
  EXPECT_EQ(Stored(Variant::FromDouble(std::numeric_limits<double>::infinity())),
            Cells({"inf", "real"}));
}

TEST_F(DatabaseValues, NotANumberIsKeptAsNull) {
  EXPECT_EQ(Stored(Variant::FromDouble(std::nan(""))), Cells({"", "null"}));
}

TEST_F(DatabaseValues, BooleansAreKeptAsTexts) {
  EXPECT_EQ(Stored(Variant::FromBoolean(true)), Cells({"1", "text"}));
  EXPECT_EQ(Stored(Variant::FromBoolean(false)), Cells({"0", "text"}));
  EXPECT_EQ(Stored("i", Variant::FromBoolean(true), {"i"}), Cells({"1"}));
  EXPECT_EQ(Stored("t", Variant::FromBoolean(true), {"t", "typeof(t)"}), Cells({"1", "text"}));
}

TEST_F(DatabaseValues, StringsAreKeptAsTexts) {
  EXPECT_EQ(Stored(Variant::FromString("x'; DROP TABLE t; --?")),
            Cells({"x'; DROP TABLE t; --?", "text"}));
  EXPECT_EQ(Stored(Variant::FromString("\xC3\xBC\xF0\x9F\x98\x80")),
            Cells({"\xC3\xBC\xF0\x9F\x98\x80", "text"}));
  EXPECT_EQ(Stored("i", Variant::FromString("12"), {"i", "typeof(i)"}), Cells({"12", "integer"}));
}

TEST_F(DatabaseValues, AnEmptyStringIsKeptAndReadAsNull) {
  EXPECT_EQ(Stored(Variant::FromString("")), Cells({"", "text"}));
  EXPECT_TRUE(database_.RunQuery(std::make_shared<Query>("t"))->IsNull(0));
}

TEST_F(DatabaseValues, AStringWithAZeroByteIsKeptInFullAndReadUpToIt) {
  using namespace std::string_literals;
  EXPECT_EQ(Stored("plain", Variant::FromString("a\0b"s), {"plain", "hex(plain)", "typeof(plain)"}),
            Cells({"a", "610062", "text"}));
}

TEST_F(DatabaseValues, AStringThatIsNotUtf8ComesBackByteForByte) {
  EXPECT_EQ(Stored(Variant::FromString("\xFF\xC3 \xED\xA0\x80")),
            Cells({"\xFF\xC3 \xED\xA0\x80", "text"}));
}

TEST_F(DatabaseValues, AStringOf10MegabytesComesBack) {
  std::string large(10'000'000, 'x');
  large.back() = 'y';
  EXPECT_EQ(Stored(Variant::FromString(large)), Cells({large, "text"}));
}

TEST_F(DatabaseValues, BlobsAndNullsAreReadAsEmptyTexts) {
  Execute(database_, "INSERT INTO t (plain, i) VALUES (x'616263', NULL)");
  EXPECT_EQ(Select(database_, Query("t", {"plain", "i"})), Rows({{"", ""}}));
}

class UnbindableValue : public DatabaseValues,
                        public testing::WithParamInterface<std::shared_ptr<Variant>> {};

TEST_P(UnbindableValue, IsRefusedWithTheWordsForAMissingTable) {
  Execute(database_, "INSERT INTO t (i) VALUES (1)");
  const Values values = {{"i", Variant::FromInteger(2)}, {"plain", GetParam()}};
  EXPECT_THAT(ErrorOf([&] { database_.Insert("t", values); }),
              IsQueryError("Table does not exist\n"));
  EXPECT_THAT(ErrorOf([&] { database_.Update("t", values, "", {}); }),
              IsQueryError("Table does not exist\n"));
  EXPECT_EQ(::sqlite3_next_stmt(ConnectionOf(database_), nullptr), nullptr);
  EXPECT_EQ(Select(database_, Query("t", {"i"})), Rows({{"1"}}));
}

INSTANTIATE_TEST_SUITE_P(EveryKind, UnbindableValue,
                         testing::Values(Variant::FromNull(),
                                         Variant::FromVariantVector({Variant::FromInteger(1)}),
                                         Variant::FromVariantMap({{"a", Variant::FromInteger(1)}}),
                                         nullptr));

TEST_F(DatabaseValues, AValueThatSqliteRefusesFailsTheStatementWithoutALine) {
  sqlite3* connection = ConnectionOf(database_);
  const int former = ::sqlite3_limit(connection, SQLITE_LIMIT_LENGTH, 100);
  EXPECT_THAT(ErrorOf([&] {
                database_.Insert("t", {{"plain", Variant::FromString(std::string(101, 'x'))}});
              }),
              IsQueryError("string or blob too big"));
  ::sqlite3_limit(connection, SQLITE_LIMIT_LENGTH, former);
}

TEST_F(DatabaseValues, BindStatementIsFalseWhereAParameterIsMissing) {
  EXPECT_THAT(ErrorOf([&] {
                database_.RunQuerySqlite("SELECT ?", nullptr, [&](sqlite3_stmt* statement) {
                  EXPECT_FALSE(database_.SqlBindStatement(
                      statement, {{"a", Variant::FromInteger(1)}, {"b", Variant::FromInteger(2)}}));
                  return false;
                });
              }),
              IsQueryError("column index out of range"));
}

// Numbers have a comma in this process as long as it lives.
class CommaLocale {
 public:
  CommaLocale() {
    const std::string make =
        "localedef -c -i de_DE -f UTF-8 " + directory_.PathOf("de_DE.utf8") + " >/dev/null 2>&1";
    isSet_ = std::system(make.c_str()) == 0 &&
             ::setenv("LOCPATH", directory_.Path().c_str(), 1) == 0 &&
             std::setlocale(LC_NUMERIC, "de_DE.utf8") != nullptr;
  }
  ~CommaLocale() {
    std::setlocale(LC_NUMERIC, "C");
    ::unsetenv("LOCPATH");
  }
  CommaLocale(const CommaLocale&) = delete;
  CommaLocale& operator=(const CommaLocale&) = delete;

  bool IsSet() const { return isSet_; }

 private:
  const TestSupport::TemporaryDirectory directory_;
  bool isSet_ = false;
};

TEST_F(DatabaseValues, NumbersHaveAPointWhateverTheLocale) {
  const CommaLocale locale;
  ASSERT_TRUE(locale.IsSet());
  ASSERT_STREQ(std::localeconv()->decimal_point, ",");
  EXPECT_EQ(Stored(Variant::FromDouble(1234.5)), Cells({"1234.500000", "real"}));

  Velmora::QueryResult result;
  result.SetArgs({"1234.5", "-0.25 and more"}, {});
  EXPECT_EQ(result.GetDouble(0), 1234.5);
  EXPECT_EQ(result.GetFloat(1), -0.25F);
}

}  // namespace
