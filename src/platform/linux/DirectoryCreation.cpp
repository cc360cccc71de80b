#include "platform/linux/DirectoryCreation.h"

#include <cerrno>

#include <sys/stat.h>

namespace Platform {
namespace {

// 0, also when it is already there, or an errno value.
int CreateOne(const std::string& path, mode_t mode) {
  if (::mkdir(path.c_str(), mode) == 0) return 0;
  if (errno != EEXIST) return errno;
  struct stat status {};
  if (::stat(path.c_str(), &status) != 0) return EEXIST;
  return S_ISDIR(status.st_mode) ? 0 : ENOTDIR;
}

}  // namespace

int CreateDirectories(const std::string& path, mode_t mode) {
  int failure = CreateOne(path, mode);
  if (failure != ENOENT) return failure;
  for (std::size_t end = path.find('/', 1); end != std::string::npos;
       end = path.find('/', end + 1)) {
    failure = CreateOne(path.substr(0, end), mode);
    if (failure != 0) return failure;
  }
  return CreateOne(path, mode);
}

}  // namespace Platform
