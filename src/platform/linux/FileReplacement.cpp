#include "platform/linux/FileReplacement.h"

#include <cerrno>
#include <cstddef>
#include <cstdio>

#include <fcntl.h>
#include <stdlib.h>
#include <unistd.h>

#include "platform/linux/FileDescriptor.h"

namespace Platform {
namespace {

int WriteAll(const FileDescriptor& file, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t count = ::write(file.Number(), bytes.data(), bytes.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return errno;
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
  return 0;
}

}  // namespace

int ReplaceFile(const std::string& path, std::string_view bytes) {
  const std::size_t nameStart = path.rfind('/') + 1;
  std::string draft = path.substr(0, nameStart) + ".qexcore-draft-XXXXXX";
  FileDescriptor file(::mkostemp(draft.data(), O_CLOEXEC));
  if (!file.IsOpen()) return errno;
  int failure = WriteAll(file, bytes);
  if (failure == 0 && ::fsync(file.Number()) != 0) failure = errno;
  if (file.Close() != 0 && failure == 0) failure = errno;
  if (failure == 0 && ::rename(draft.c_str(), path.c_str()) != 0) failure = errno;
  if (failure != 0) ::unlink(draft.c_str());
  return failure;
}

}  // namespace Platform
