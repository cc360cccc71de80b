#pragma once

#include <string>
#include <vector>

#include "VelmoraCore/Export.h"

namespace Velmora {

// What a database is asked for, piece by piece. Every text becomes part of the statement as it
// stands; an empty one leaves its clause out. A value like any other: one thread at a time while it
// is changed.
class VELMORA_CORE_API Query {
 public:
  Query();

  // No columns means all of them.
  explicit Query(std::string table, std::vector<std::string> columns = {});

  // Each returns this query, so that calls chain.
  Query& SetTable(std::string table);
  Query& SetColumns(std::vector<std::string> columns);

  // Each argument takes the place of the first "?" left in the selection, unquoted.
  Query& SetSelection(std::string selection, std::vector<std::string> selectionArgs = {});

  Query& SetGroupBy(std::string groupBy);
  Query& SetHaving(std::string having);
  Query& SetOrderBy(std::string orderBy);
  Query& SetLimit(std::string limit);

  const std::string& GetTable() const;
  const std::vector<std::string>& GetColumns() const;
  const std::string& GetSelection() const;
  const std::vector<std::string>& GetSelectionArgs() const;
  const std::string& GetGroupBy() const;
  const std::string& GetHaving() const;
  const std::string& GetOrderBy() const;
  const std::string& GetLimit() const;

 private:
  std::string table_;
  std::vector<std::string> columns_;
  std::string selection_;
  std::vector<std::string> selectionArgs_;
  std::string groupBy_;
  std::string having_;
  std::string orderBy_;
  std::string limit_;
};

}  // namespace Velmora
