#pragma once

#include <string>

// Runs statements on a database by way of SQLite itself; the first column of the first row of the
// last one, as text. Throws std::runtime_error.
std::string RunRawSql(const std::string& path, const std::string& sql);
