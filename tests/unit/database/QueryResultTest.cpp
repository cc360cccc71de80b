#include <limits>
#include <stdexcept>

#include "DatabaseFixture.h"
#include "services/database/QueryResult.h"

namespace {

using DatabaseTests::ErrorOf;
using DatabaseTests::IsError;
using TestSupport::LogCapture;
using TestSupport::LogLevel;
using Velmora::LoggingMode;
using Velmora::ObjectToSharedPtr;
using Velmora::QueryResult;
namespace ErrorCodes = Velmora::ErrorCodes;

const std::vector<std::string> kNames = {"a", "b"};

class QueryResultTest : public testing::Test {
 protected:
  void Append(const std::vector<std::string>& row) { result_.SetArgs(row, kNames); }
  // What the first column of the current row holds.
  std::string Here() const { return result_.Get(0); }

  static auto IsIndexError() {
    return IsError(ErrorCodes::kDatabaseQueryResultIndexError, "Index error");
  }
  static auto IsClosedError() {
    return IsError(ErrorCodes::kDatabaseQueryResultAlreadyClosed, "QueryResult is already closed");
  }

  LogCapture log_{LoggingMode::Debug};
  QueryResult result_;
};

TEST_F(QueryResultTest, CountsItsRows) {
  EXPECT_EQ(result_.GetCount(), 0);
  Append({"1", "2"});
  Append({"3", "4"});
  EXPECT_EQ(result_.GetCount(), 2);
}

TEST_F(QueryResultTest, ReadsCellsOfTheCurrentRowInEveryType) {
  Append({"-12", "1.5"});
  EXPECT_EQ(result_.GetInt(0), -12);
  EXPECT_EQ(result_.GetLong(0), -12);
  EXPECT_EQ(result_.GetDouble(0), -12);
  EXPECT_EQ(result_.GetString(0), "-12");
  EXPECT_EQ(result_.GetDouble(1), 1.5);
  EXPECT_EQ(result_.GetFloat(1), 1.5F);
  EXPECT_EQ(result_.GetInt(1), 1);
  EXPECT_EQ(result_.GetString(1), "1.5");
  EXPECT_EQ(result_.Get(1), "1.5");
}

TEST_F(QueryResultTest, ReadsLongsInFullWidth) {
  Append({"9223372036854775807", "-9223372036854775808"});
  EXPECT_EQ(result_.GetLong(0), std::numeric_limits<std::int64_t>::max());
  EXPECT_EQ(result_.GetLong(1), std::numeric_limits<std::int64_t>::min());
}

TEST_F(QueryResultTest, ThrowsAsTheStandardLibraryDoesForATextThatIsNoNumber) {
  Append({"abc", ""});
  EXPECT_THROW(result_.GetInt(0), std::invalid_argument);
  EXPECT_THROW(result_.GetLong(0), std::invalid_argument);
  EXPECT_THROW(result_.GetDouble(1), std::invalid_argument);
  EXPECT_THROW(result_.GetFloat(1), std::invalid_argument);
  Append({"2147483648", "1e999"});
  result_.MoveToLast();
  EXPECT_THROW(result_.GetInt(0), std::out_of_range);
  EXPECT_THROW(result_.GetDouble(1), std::out_of_range);
}

TEST_F(QueryResultTest, TakesAnEmptyTextForNull) {
  Append({"", "x"});
  EXPECT_TRUE(result_.IsNull(0));
  EXPECT_FALSE(result_.IsNull(1));
}

TEST_F(QueryResultTest, ThrowsForAColumnThatIsNotThere) {
  Append({"1", "2"});
  constexpr std::uint32_t kLast = std::numeric_limits<std::uint32_t>::max();
  EXPECT_THAT(ErrorOf([&] { result_.Get(2); }), IsIndexError());
  EXPECT_THAT(ErrorOf([&] { result_.GetString(kLast); }), IsIndexError());
  EXPECT_THAT(ErrorOf([&] { result_.GetInt(2); }), IsIndexError());
  EXPECT_THAT(ErrorOf([&] { result_.GetLong(2); }), IsIndexError());
  EXPECT_THAT(ErrorOf([&] { result_.GetDouble(2); }), IsIndexError());
  EXPECT_THAT(ErrorOf([&] { result_.GetFloat(2); }), IsIndexError());
  EXPECT_THAT(ErrorOf([&] { result_.IsNull(2); }), IsIndexError());
}

TEST_F(QueryResultTest, LooksForAColumnInTheCurrentRowOnly) {
  Append({"1", "2"});
  Append({"3"});
  EXPECT_EQ(result_.Get(1), "2");
  result_.MoveToNext();
  EXPECT_THAT(ErrorOf([&] { result_.Get(1); }), IsIndexError());
}

TEST_F(QueryResultTest, MovesItsCursorAndStaysOnTheLastRow) {
  for (const char* text : {"1", "2", "3"}) Append({text});
  EXPECT_EQ(Here(), "1");
  EXPECT_TRUE(result_.MoveToNext());
  EXPECT_EQ(Here(), "2");
  EXPECT_TRUE(result_.MoveToNext());
  EXPECT_TRUE(result_.MoveToNext());
  EXPECT_EQ(Here(), "3");
  EXPECT_TRUE(result_.MoveToFirst());
  EXPECT_EQ(Here(), "1");
  EXPECT_TRUE(result_.MoveToLast());
  EXPECT_EQ(Here(), "3");
  EXPECT_TRUE(result_.MoveToLast());
  EXPECT_EQ(Here(), "3");
}

TEST_F(QueryResultTest, HasNoColumnsWithoutRowsWhereverTheCursorGoes) {
  EXPECT_THAT(ErrorOf([&] { result_.Get(0); }), IsIndexError());
  EXPECT_TRUE(result_.MoveToFirst());
  EXPECT_TRUE(result_.MoveToNext());
  EXPECT_THAT(ErrorOf([&] { result_.Get(0); }), IsIndexError());
  EXPECT_TRUE(result_.MoveToLast());
  EXPECT_THAT(ErrorOf([&] { result_.IsNull(0); }), IsIndexError());
}

// With unsigned numbers one less than no rows is the greatest number of all.
TEST_F(QueryResultTest, MoveToNextWithoutRowsGoesOneOn) {
  result_.MoveToNext();
  Append({"1"});
  Append({"2"});
  EXPECT_EQ(Here(), "2");
}

TEST_F(QueryResultTest, MoveToLastWithoutRowsGoesToTheGreatestNumberAndNextFromThereToTheFirst) {
  result_.MoveToLast();
  Append({"1"});
  Append({"2"});
  EXPECT_THAT(ErrorOf([&] { Here(); }), IsIndexError());
  result_.MoveToLast();
  EXPECT_THAT(ErrorOf([&] { Here(); }), IsIndexError());
  result_.MoveToNext();
  EXPECT_EQ(Here(), "1");
}

TEST_F(QueryResultTest, ThrowsOnceItIsClosed) {
  Append({"1", "2"});
  result_.Close();
  EXPECT_THAT(ErrorOf([&] { result_.Get(0); }), IsClosedError());
  EXPECT_THAT(ErrorOf([&] { result_.Get(9); }), IsClosedError());
  EXPECT_THAT(ErrorOf([&] { result_.GetString(0); }), IsClosedError());
  EXPECT_THAT(ErrorOf([&] { result_.GetInt(0); }), IsClosedError());
  EXPECT_THAT(ErrorOf([&] { result_.GetLong(0); }), IsClosedError());
  EXPECT_THAT(ErrorOf([&] { result_.GetDouble(0); }), IsClosedError());
  EXPECT_THAT(ErrorOf([&] { result_.GetFloat(0); }), IsClosedError());
  EXPECT_THAT(ErrorOf([&] { result_.IsNull(0); }), IsClosedError());
  EXPECT_THAT(ErrorOf([&] { result_.MoveToFirst(); }), IsClosedError());
  EXPECT_THAT(ErrorOf([&] { result_.MoveToNext(); }), IsClosedError());
  EXPECT_THAT(ErrorOf([&] { result_.MoveToLast(); }), IsClosedError());
}

TEST_F(QueryResultTest, IsEmptyOnceItIsClosedAndMayBeClosedAgain) {
  Append({"1", "2"});
  result_.Close();
  EXPECT_EQ(result_.GetCount(), 0);
  result_.Close();
  EXPECT_EQ(result_.GetCount(), 0);
}

TEST(QueryResult, LogsOneTraceLineForEachCell) {
  LogCapture log;
  QueryResult result;
  result.SetArgs({"1", ""}, kNames);
  log.ExpectLine(LogLevel::Debug, "DatabaseService", "QueryResult: <a> = 1");
  log.ExpectLine(LogLevel::Debug, "DatabaseService", "QueryResult: <b> = ");
}

TEST(QueryResult, LogsOnlyCellsThatHaveAColumnsName) {
  LogCapture log;
  QueryResult result;
  result.SetArgs({"1", "2", "3"}, {"a"});
  result.SetArgs({"4"}, {"a", "b"});
  EXPECT_EQ(result.Get(2), "3");
  log.ExpectLine(LogLevel::Debug, "DatabaseService", "QueryResult: <a> = 1");
  log.ExpectLine(LogLevel::Debug, "DatabaseService", "QueryResult: <a> = 4");
}

TEST(QueryResult, IsAnObjectOfTheCore) {
  const auto result = std::make_shared<QueryResult>();
  EXPECT_EQ(ObjectToSharedPtr(*result), result);
}

}  // namespace
