#include "platform/linux/FileReplacement.h"

#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <random>

#include <fcntl.h>
#include <unistd.h>

#include "platform/linux/FileDescriptor.h"

namespace Platform {
namespace {

constexpr mode_t kOwnerOnly = 0600;

int WriteAll(const FileDescriptor& file, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t count = ::write(file.Number(), bytes.data(), bytes.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return errno;
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
  return ::fsync(file.Number()) == 0 ? 0 : errno;
}

std::string NewDraftName() {
  std::random_device random;
  return ".qexcore-draft-" + std::to_string(random()) + "-" + std::to_string(random());
}

// Writes the bytes into a file that has no name yet, and then gives it one, so that whoever tidies
// the folder up hardly ever meets a draft. False where the file system or the process cannot do so;
// `failure` is what went wrong with the bytes.
bool WriteUnnamed(const std::string& folder, const std::string& draft, std::string_view bytes,
                  int& failure) {
  const FileDescriptor file(::open(folder.c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, kOwnerOnly));
  if (!file.IsOpen()) return false;
  failure = WriteAll(file, bytes);
  if (failure != 0) return true;
  const std::string self = "/proc/self/fd/" + std::to_string(file.Number());
  return ::linkat(AT_FDCWD, self.c_str(), AT_FDCWD, draft.c_str(), AT_SYMLINK_FOLLOW) == 0;
}

int WriteNamed(const std::string& draft, std::string_view bytes) {
  FileDescriptor file(::open(draft.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, kOwnerOnly));
  if (!file.IsOpen()) return errno;
  int failure = WriteAll(file, bytes);
  if (file.Close() != 0 && failure == 0) failure = errno;
  if (failure != 0) ::unlink(draft.c_str());
  return failure;
}

int ReplaceOnce(const std::string& path, std::string_view bytes) {
  const std::size_t nameStart = path.rfind('/') + 1;
  const std::string folder = nameStart == 0 ? std::string("./") : path.substr(0, nameStart);
  const std::string draft = folder + NewDraftName();
  int failure = 0;
  if (!WriteUnnamed(folder, draft, bytes, failure)) failure = WriteNamed(draft, bytes);
  if (failure != 0 || ::rename(draft.c_str(), path.c_str()) == 0) return failure;
  failure = errno;
  ::unlink(draft.c_str());
  return failure;
}

}  // namespace

int ReplaceFile(const std::string& path, std::string_view bytes) {
  // Another process may remove whatever it does not know, the draft too.
  constexpr int kAttempts = 20;
  int failure = ENOENT;
  for (int attempt = 0; failure == ENOENT && attempt < kAttempts; ++attempt) {
    failure = ReplaceOnce(path, bytes);
  }
  return failure;
}

}  // namespace Platform
