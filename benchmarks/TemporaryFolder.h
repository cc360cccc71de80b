#pragma once

#include <cstdint>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <system_error>

#include <stdlib.h>

// An empty directory, which goes with the object. In memory where that has room for two gigabytes,
// so that the disk does not hide the differences.
class TemporaryFolder {
 public:
  TemporaryFolder() {
    path_ = (Parent() / ("qexcore-bench-" + std::string(6, 'X'))).string();
    if (::mkdtemp(path_.data()) == nullptr) throw std::runtime_error("no temporary folder");
  }
  ~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  std::string PathOf(const std::string& name) const { return path_ + '/' + name; }
  const std::string& Path() const { return path_; }

 private:
  static std::filesystem::path Parent() {
    const std::filesystem::path memory = "/dev/shm";
    std::error_code error;
    const auto space = std::filesystem::space(memory, error);
    const bool hasRoom = !error && space.available > (std::uintmax_t{2} << 30);
    return hasRoom ? memory : std::filesystem::temp_directory_path();
  }

  std::string path_;
};
