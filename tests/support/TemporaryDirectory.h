#pragma once

#include <filesystem>
#include <string>

namespace TestSupport {

// A fresh, empty directory, which goes with all that is in it when the object goes.
class TemporaryDirectory {
 public:
  // Throws std::system_error when it cannot be made.
  TemporaryDirectory();
  ~TemporaryDirectory();
  TemporaryDirectory(const TemporaryDirectory&) = delete;
  TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

  // Absolute, without symbolic links and without a "/" at its end.
  const std::filesystem::path& Path() const { return path_; }

  // The path of `name` inside the directory, whether or not there is such an item.
  std::string PathOf(const std::string& name) const { return (path_ / name).string(); }

  // Writes a file into the directory, making missing folders on the way, and gives its path.
  std::string WriteFile(const std::string& name, const std::string& contents) const;

 private:
  std::filesystem::path path_;
};

// The whole file's bytes; fails the test and gives an empty text when it cannot be read.
std::string ReadFileBytes(const std::string& path);

}  // namespace TestSupport
