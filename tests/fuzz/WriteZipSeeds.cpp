// Writes the archives that the fuzzer starts from, each as a file, into the directory that is
// given.

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "fuzz/ZipFuzzing.h"

int main(int count, char** arguments) {
  if (count != 2) return EXIT_FAILURE;
  const std::filesystem::path directory = arguments[1];
  std::filesystem::create_directories(directory);
  for (const auto& [name, bytes] : ZipFuzzing::Seeds()) {
    std::ofstream file(directory / name, std::ios::binary);
    file << bytes;
    if (!file.flush()) return EXIT_FAILURE;
  }
  return EXIT_SUCCESS;
}
