#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

// What must hold for any bytes that are taken for a zip archive.
namespace ZipFuzzing {

// Unpacks the archive into a directory that nothing leads out of, and gives an empty text when it
// succeeds or fails as is promised, leaves no file open, and writes about as much as the archive
// states; else what does not hold.
std::string CheckArchive(std::string_view bytes);

// Small archives of every kind to start from, by name.
std::vector<std::pair<std::string, std::string>> Seeds();

}  // namespace ZipFuzzing
