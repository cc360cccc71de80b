#include "platform/linux/SmallFile.h"

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/linux/FileDescriptor.h"

namespace Platform {
namespace {

bool IsRegularFile(const FileDescriptor& file) {
  struct stat status = {};
  return file.IsOpen() && ::fstat(file.Number(), &status) == 0 && S_ISREG(status.st_mode);
}

// Negative when the device fails.
ssize_t Read(const FileDescriptor& file, char* buffer, std::size_t count) {
  ssize_t got = -1;
  do {
    got = ::read(file.Number(), buffer, count);
  } while (got < 0 && errno == EINTR);
  return got;
}

}  // namespace

std::optional<std::string> ReadSmallFile(const std::string& path, std::size_t limit) {
  const FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
  if (!IsRegularFile(file)) return std::nullopt;

  // The sizes that /sys and /proc tell are not those of the contents, so the end decides.
  std::string contents;
  char buffer[4096];
  while (true) {
    const ssize_t got = Read(file, buffer, sizeof buffer);
    if (got < 0) return std::nullopt;
    if (got == 0) return contents;
    if (static_cast<std::size_t>(got) > limit - contents.size()) return std::nullopt;
    contents.append(buffer, static_cast<std::size_t>(got));
  }
}

}  // namespace Platform
