#include "RawDatabase.h"

#include <memory>
#include <stdexcept>

#include <sqlite3.h>

std::string RunRawSql(const std::string& path, const std::string& sql) {
  sqlite3* opened = nullptr;
  const int code = ::sqlite3_open(path.c_str(), &opened);
  const std::unique_ptr<sqlite3, int (*)(sqlite3*)> connection(opened, &::sqlite3_close);
  if (code != SQLITE_OK) throw std::runtime_error(::sqlite3_errmsg(opened));
  std::string result;
  const auto keepFirst = [](void* kept, int count, char** values, char**) {
    auto& text = *static_cast<std::string*>(kept);
    if (text.empty() && count > 0 && values[0] != nullptr) text = values[0];
    return 0;
  };
  if (::sqlite3_exec(opened, sql.c_str(), keepFirst, &result, nullptr) != SQLITE_OK) {
    throw std::runtime_error(::sqlite3_errmsg(opened));
  }
  return result;
}
