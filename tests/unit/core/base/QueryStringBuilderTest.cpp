#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "VelmoraCore/QueryStringBuilder.h"

namespace Velmora {
namespace {

using Type = DatabaseInterface::ColumnDataType;
using Constraint = DatabaseInterface::ColumnConstraint;

TEST(QueryStringBuilder, WritesATableWithEveryTypeAndConstraint) {
  EXPECT_EQ(QueryStringBuilder::PrepareCreateTableQueryString(
                "hits", {"id", "weight", "url"}, {Type::Integer, Type::Real, Type::Text},
                {{Constraint::PrimaryKey, Constraint::AutoIncrement},
                 {},
                 {Constraint::NotNull, Constraint::Unique}}),
            "CREATE TABLE IF NOT EXISTS hits (id INTEGER PRIMARY KEY AUTOINCREMENT, weight REAL, "
            "url TEXT NOT NULL UNIQUE)");
}

TEST(QueryStringBuilder, WritesAutoIncrementRightAfterThePrimaryKeyAndEachConstraintOnce) {
  EXPECT_EQ(QueryStringBuilder::PrepareCreateTableQueryString(
                "t", {"id"}, {Type::Integer},
                {{Constraint::NotNull, Constraint::AutoIncrement, Constraint::NotNull,
                  Constraint::PrimaryKey}}),
            "CREATE TABLE IF NOT EXISTS t (id INTEGER PRIMARY KEY AUTOINCREMENT NOT NULL)");
}

TEST(QueryStringBuilder, PutsNamesInAsTheyStand) {
  EXPECT_EQ(
      QueryStringBuilder::PrepareCreateTableQueryString("\"a b\"", {"[c d]"}, {Type::Text}, {{}}),
      "CREATE TABLE IF NOT EXISTS \"a b\" ([c d] TEXT)");
}

TEST(QueryStringBuilder, RefusesVectorsOfDifferentLengths) {
  EXPECT_EQ(
      QueryStringBuilder::PrepareCreateTableQueryString("t", {"a", "b"}, {Type::Text}, {{}, {}}),
      "");
  EXPECT_EQ(
      QueryStringBuilder::PrepareCreateTableQueryString("t", {"a"}, {Type::Text, Type::Text}, {{}}),
      "");
  EXPECT_EQ(QueryStringBuilder::PrepareCreateTableQueryString("t", {"a"}, {Type::Text}, {}), "");
}

TEST(QueryStringBuilder, RefusesATableWithoutNameOrColumns) {
  EXPECT_EQ(QueryStringBuilder::PrepareCreateTableQueryString("", {"a"}, {Type::Text}, {{}}), "");
  EXPECT_EQ(QueryStringBuilder::PrepareCreateTableQueryString("t", {}, {}, {}), "");
}

TEST(QueryStringBuilder, RefusesTypesAndConstraintsItDoesNotKnow) {
  EXPECT_EQ(
      QueryStringBuilder::PrepareCreateTableQueryString("t", {"a"}, {static_cast<Type>(99)}, {{}}),
      "");
  EXPECT_EQ(QueryStringBuilder::PrepareCreateTableQueryString("t", {"a"}, {Type::Text},
                                                              {{static_cast<Constraint>(-1)}}),
            "");
}

}  // namespace
}  // namespace Velmora
