#include "Trees.h"

#include <filesystem>
#include <fstream>
#include <random>

#include "support/TemporaryDirectory.h"

namespace fs = std::filesystem;

Tree ReadTree(const std::string& directory) {
  Tree tree;
  if (!fs::exists(directory)) return tree;
  for (const auto& item : fs::recursive_directory_iterator(directory)) {
    auto& contents = tree[item.path().lexically_relative(directory).string()];
    if (!item.is_directory()) contents = TestSupport::ReadFileBytes(item.path().string());
  }
  return tree;
}

std::string DifferenceOf(const Tree& one, const Tree& other) {
  std::string difference;
  for (const auto& [path, contents] : one) {
    const auto found = other.find(path);
    if (found == other.end()) {
      difference += "only in the first: " + path + "\n";
    } else if (found->second != contents) {
      difference += "differs: " + path + "\n";
    }
  }
  for (const auto& [path, contents] : other) {
    if (!one.contains(path)) difference += "only in the second: " + path + "\n";
  }
  return difference;
}

void MakeVariedTree(const std::string& directory) {
  const Tree tree = {
      {"empty", ""},
      {"one byte", "x"},
      {"text.txt", "A line of text.\n"},
      {"zeros", std::string(1'000'000, '\0')},
      {"random", RandomBytes(300'000)},
      {"d/piece", RandomBytes(128)},
      {"d/two pieces", RandomBytes(256)},
      {"d/e/gathered", RandomBytes(65'536)},
      {"d/e/one more", RandomBytes(65'537)},
      {"\xc3\xbc"
       "ber/\xe6\x97\xa5\xe6\x9c\xac.txt",
       "beyond ASCII"},
      {std::string(200, 'n'), "a long name"},
  };
  for (const auto& [path, contents] : tree) {
    const fs::path file = fs::path(directory) / path;
    fs::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << *contents;
  }
  fs::create_directories(directory + "/d/nothing inside");
}

std::string RandomBytes(std::size_t count) {
  std::mt19937 generator(static_cast<unsigned>(count));
  std::string bytes(count, '\0');
  for (char& byte : bytes) byte = static_cast<char>(generator());
  return bytes;
}
