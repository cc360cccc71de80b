#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "VelmoraCore/Query.h"

namespace Velmora {
namespace {

TEST(Query, IsEmptyAtFirst) {
  const Query query;

  EXPECT_EQ(query.GetTable(), "");
  EXPECT_TRUE(query.GetColumns().empty());
  EXPECT_EQ(query.GetSelection(), "");
  EXPECT_TRUE(query.GetSelectionArgs().empty());
  EXPECT_EQ(query.GetGroupBy(), "");
  EXPECT_EQ(query.GetHaving(), "");
  EXPECT_EQ(query.GetOrderBy(), "");
  EXPECT_EQ(query.GetLimit(), "");
}

TEST(Query, TakesTableAndColumnsFromTheStart) {
  const Query query("hits", {"id", "url"});
  EXPECT_EQ(query.GetTable(), "hits");
  EXPECT_EQ(query.GetColumns(), (std::vector<std::string>{"id", "url"}));
}

TEST(Query, IsBuiltPieceByPiece) {
  Query query;
  query.SetTable("hits")
      .SetColumns({"id"})
      .SetSelection("url = ? AND id > ?", {"'u'", "3"})
      .SetGroupBy("url")
      .SetHaving("count(*) > 1")
      .SetOrderBy("id DESC")
      .SetLimit("10");

  EXPECT_EQ(query.GetTable(), "hits");
  EXPECT_EQ(query.GetColumns(), (std::vector<std::string>{"id"}));
  EXPECT_EQ(query.GetSelection(), "url = ? AND id > ?");
  EXPECT_EQ(query.GetSelectionArgs(), (std::vector<std::string>{"'u'", "3"}));
  EXPECT_EQ(query.GetGroupBy(), "url");
  EXPECT_EQ(query.GetHaving(), "count(*) > 1");
  EXPECT_EQ(query.GetOrderBy(), "id DESC");
  EXPECT_EQ(query.GetLimit(), "10");
}

TEST(Query, ForgetsTheArgumentsOfAFormerSelection) {
  Query query;
  query.SetSelection("a = ?", {"1"}).SetSelection("b IS NULL");
  EXPECT_TRUE(query.GetSelectionArgs().empty());
}

}  // namespace
}  // namespace Velmora
