#include "support/TemporaryDirectory.h"

#include <cerrno>
#include <fstream>
#include <iterator>
#include <system_error>

#include <gtest/gtest.h>
#include <stdlib.h>

namespace TestSupport {

namespace fs = std::filesystem;

TemporaryDirectory::TemporaryDirectory() {
  const fs::path parent = fs::canonical(fs::temp_directory_path());
  // What mkdtemp replaces.
  const std::string placeholder(6, 'X');
  std::string pattern = (parent / ("qexcore-test-" + placeholder)).string();
  if (::mkdtemp(pattern.data()) == nullptr) {
    throw std::system_error(errno, std::generic_category(), pattern);
  }
  path_ = pattern;
}

TemporaryDirectory::~TemporaryDirectory() {
  std::error_code error;
  fs::remove_all(path_, error);
  if (error) ADD_FAILURE() << "cannot remove " << path_ << ": " << error.message();
}

std::string TemporaryDirectory::WriteFile(const std::string& name,
                                          const std::string& contents) const {
  const fs::path path = path_ / name;
  fs::create_directories(path.parent_path());
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  file.write(contents.data(), static_cast<std::streamsize>(contents.size()));
  file.close();
  EXPECT_TRUE(file.good()) << "cannot write " << path;
  return path.string();
}

std::string ReadFileBytes(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  EXPECT_TRUE(file.is_open()) << "cannot open " << path;
  return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace TestSupport
