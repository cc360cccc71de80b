#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "VelmoraCore/Query.h"
#include "VelmoraCore/Variant.h"

// The texts of the statements that a database runs. Names, clauses and arguments become part of
// them as they stand, without quotes.
namespace Velmora::SqlText {

// `clause` with each argument, in order, in the place of the first "?" that is left, be it one that
// an earlier argument brought.
std::string SubstituteArguments(const std::string& clause,
                                const std::vector<std::string>& arguments);

// One row for the table of exactly this name, none when there is no such table.
std::string TableExists(const std::string& table);

// A parameter for each value, in the order of the map.
std::string Insert(const std::string& table,
                   const std::map<std::string, std::shared_ptr<Variant>>& values);
std::string Update(const std::string& table,
                   const std::map<std::string, std::shared_ptr<Variant>>& values,
                   const std::string& whereClause, const std::vector<std::string>& whereArgs);

std::string Select(const Query& query);
std::string Delete(const std::string& table, const std::string& whereClause,
                   const std::vector<std::string>& whereArgs);
std::string DropTable(const std::string& table);

}  // namespace Velmora::SqlText
