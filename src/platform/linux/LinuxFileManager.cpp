#include "platform/linux/LinuxFileManager.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <climits>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string_view>
#include <system_error>
#include <utility>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "QEXCore_iOS/Platform/Utf8.h"
#include "platform/linux/DirectoryCreation.h"
#include "platform/linux/FileDescriptor.h"
#include "platform/linux/FileErrors.h"
#include "platform/linux/FileReplacement.h"
#include "platform/linux/LinuxFileHandle.h"
#include "platform/linux/UserDirectories.h"

namespace Platform {
namespace {

namespace fs = std::filesystem;

// Why the system could not even be asked about such a path; 0 when it can. C strings would end at
// the zero byte and so name another file.
int FaultOfPath(std::string_view path) {
  if (path.empty()) return ENOENT;
  if (path.size() >= PATH_MAX) return ENAMETOOLONG;
  return path.find('\0') == std::string_view::npos ? 0 : EINVAL;
}

// Never waits at a pipe; for regular files O_NONBLOCK means nothing.
FileDescriptor Open(const std::string& path, int flags) {
  if (const int fault = FaultOfPath(path)) {
    errno = fault;
    return {};
  }
  int number = -1;
  do {
    number = ::open(path.c_str(), flags | O_CLOEXEC | O_NONBLOCK | O_NOCTTY, 0666);
  } while (number < 0 && errno == EINTR);
  return FileDescriptor(number);
}

bool IsDirectory(const FileDescriptor& file) {
  struct stat status {};
  return ::fstat(file.Number(), &status) == 0 && S_ISDIR(status.st_mode);
}

// Of what the path leads to; nothing where it cannot be asked for.
std::optional<struct stat> StatusOf(const std::string& path) {
  struct stat status {};
  if (FaultOfPath(path) != 0 || ::stat(path.c_str(), &status) != 0) return std::nullopt;
  return status;
}

FileType TypeOf(fs::file_type type) {
  switch (type) {
    case fs::file_type::none:
    case fs::file_type::not_found:
      return FileType::Missing;
    case fs::file_type::regular:
      return FileType::Regular;
    case fs::file_type::directory:
      return FileType::Directory;
    default:
      return FileType::Other;
  }
}

struct DirectoryCloser {
  void operator()(DIR* directory) const { ::closedir(directory); }
};
using DirectoryStream = std::unique_ptr<DIR, DirectoryCloser>;

// Of the entry itself, mostly without asking the system again: listings bring the types along.
FileType TypeOf(DIR* directory, const dirent& entry) {
  if (entry.d_type == DT_REG) return FileType::Regular;
  if (entry.d_type == DT_DIR) return FileType::Directory;
  if (entry.d_type != DT_UNKNOWN) return FileType::Other;
  struct stat status {};
  if (::fstatat(::dirfd(directory), entry.d_name, &status, AT_SYMLINK_NOFOLLOW) != 0) {
    return FileType::Other;
  }
  if (S_ISREG(status.st_mode)) return FileType::Regular;
  return S_ISDIR(status.st_mode) ? FileType::Directory : FileType::Other;
}

// Adds the entries of the directory. 0, or what went wrong.
int ReadEntries(const std::string& path, std::vector<DirectoryEntry>& entries) {
  if (const int fault = FaultOfPath(path)) return fault;
  const DirectoryStream directory(::opendir(path.c_str()));
  if (!directory) return errno;
  for (;;) {
    errno = 0;
    const dirent* const entry = ::readdir(directory.get());
    if (entry == nullptr) return errno;
    const std::string_view name = entry->d_name;
    if (name == "." || name == "..") continue;
    entries.push_back({std::string(name), TypeOf(directory.get(), *entry)});
  }
}

// Reads a regular file to its end. 0, or what went wrong: EFBIG beyond `limit` bytes, ENOTSUP for
// pipes and devices, which may never end.
int ReadAll(const FileDescriptor& file, std::size_t limit, std::string& text) {
  struct stat status {};
  if (::fstat(file.Number(), &status) != 0) return errno;
  if (S_ISDIR(status.st_mode)) return EISDIR;
  if (!S_ISREG(status.st_mode)) return ENOTSUP;
  if (status.st_size > static_cast<off_t>(limit)) return EFBIG;
  // One byte more than the file should hold, so that its end shows without another round.
  std::size_t room = static_cast<std::size_t>(status.st_size) + 1;
  std::size_t length = 0;
  for (;;) {
    text.resize(length + room);
    const ssize_t count = ::read(file.Number(), text.data() + length, room);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return errno;
    if (count == 0) break;
    length += static_cast<std::size_t>(count);
    if (length > limit) return EFBIG;
    constexpr std::size_t kStep = std::size_t{64} * 1024;
    room = kStep;
  }
  text.resize(length);
  return 0;
}

bool AreSame(const struct stat& one, const struct stat& other) {
  return one.st_dev == other.st_dev && one.st_ino == other.st_ino;
}

// Empties a file that was there before; false when it is the one at `spared`.
bool Empty(const FileDescriptor& file, const std::string& spared) {
  struct stat status {};
  if (::fstat(file.Number(), &status) != 0) return false;
  if (!S_ISREG(status.st_mode)) return true;
  const auto other = spared.empty() ? std::nullopt : StatusOf(spared);
  if (other && AreSame(status, *other)) return false;
  return ::ftruncate(file.Number(), 0) == 0;
}

bool IsNameOfOneFolder(std::string_view name) {
  return !name.empty() && name.size() <= NAME_MAX && name != "." && name != ".." &&
         name.find('/') == std::string_view::npos && name.find('\0') == std::string_view::npos;
}

// `remove` tells whether there was anything to remove.
template <class Operation>
bool Remove(const std::string& path, Error* error, const Operation& remove) {
  std::error_code failure(FaultOfPath(path), std::generic_category());
  if (!failure && !remove(path, failure) && !failure) {
    failure = std::make_error_code(std::errc::no_such_file_or_directory);
  }
  if (!failure) return true;
  WriteFileError(error, "remove", path, failure.value());
  return false;
}

}  // namespace

std::string LinuxFileManager::CurrentDirectoryPath() const {
  std::error_code error;
  return fs::current_path(error).string();
}

FileType LinuxFileManager::TypeOfItem(const std::string& path) const {
  if (FaultOfPath(path) != 0) return FileType::Missing;
  std::error_code error;
  return TypeOf(fs::status(path, error).type());
}

bool LinuxFileManager::IsWritable(const std::string& path) const {
  return FaultOfPath(path) == 0 && ::access(path.c_str(), W_OK) == 0;
}

bool LinuxFileManager::CreateDirectory(const std::string& path, Error* error) {
  int failure = FaultOfPath(path);
  if (failure == 0) failure = CreateDirectories(path, 0777);
  if (failure == 0) return true;
  WriteFileError(error, "create the directory", path, failure);
  return false;
}

bool LinuxFileManager::RemoveItem(const std::string& path, Error* error) {
  return Remove(path, error, [](const std::string& item, std::error_code& failure) {
    return fs::remove_all(item, failure) > 0;
  });
}

bool LinuxFileManager::RemoveFileOrEmptyDirectory(const std::string& path, Error* error) {
  return Remove(path, error, [](const std::string& item, std::error_code& failure) {
    return fs::remove(item, failure);
  });
}

std::vector<DirectoryEntry> LinuxFileManager::ContentsOfDirectory(const std::string& path,
                                                                  Error* error) const {
  std::vector<DirectoryEntry> entries;
  const int failure = ReadEntries(path, entries);
  if (failure == 0) return entries;
  WriteFileError(error, "list the directory", path, failure);
  return {};
}

std::optional<FileAttributes> LinuxFileManager::AttributesOfItem(const std::string& path) const {
  const auto status = StatusOf(path);
  if (!status) return std::nullopt;
  // The clock reaches from 1677 to 2262, file systems farther.
  constexpr std::int64_t kFarthest =
      std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::duration::max()).count();
  const auto sinceEpoch = std::chrono::seconds(std::clamp<std::int64_t>(
                              status->st_mtim.tv_sec, -kFarthest + 1, kFarthest - 1)) +
                          std::chrono::nanoseconds(status->st_mtim.tv_nsec);
  return FileAttributes{
      .size = status->st_size,
      .modified = std::chrono::system_clock::time_point(
          std::chrono::duration_cast<std::chrono::system_clock::duration>(sinceEpoch))};
}

std::optional<std::string> LinuxFileManager::ReadText(const std::string& path, Error* error) const {
  constexpr std::size_t kLargestText = std::size_t{512} << 20;
  constexpr const char* kAction = "read the file";
  const FileDescriptor file = Open(path, O_RDONLY);
  std::string text;
  const int failure = file.IsOpen() ? ReadAll(file, kLargestText, text) : errno;
  if (failure == EFBIG) {
    WriteFileError(error, kAction, path, failure, "It is larger than 512 MiB");
  } else if (failure == ENOTSUP) {
    WriteFileError(error, kAction, path, failure, "It is no regular file");
  } else if (failure != 0) {
    WriteFileError(error, kAction, path, failure);
  } else if (!IsValidUtf8(text)) {
    WriteFileError(error, kAction, path, EILSEQ, "It is not UTF-8 text");
  } else {
    return text;
  }
  return std::nullopt;
}

bool LinuxFileManager::WriteFile(const std::string& path, std::string_view bytes, Error* error) {
  int failure = FaultOfPath(path);
  if (failure == 0) failure = ReplaceFile(path, bytes);
  if (failure == 0) return true;
  WriteFileError(error, "write the file", path, failure);
  return false;
}

std::unique_ptr<FileHandle> LinuxFileManager::OpenForReading(const std::string& path) {
  FileDescriptor file = Open(path, O_RDONLY);
  if (!file.IsOpen() || IsDirectory(file)) return nullptr;
  return std::make_unique<LinuxFileHandle>(std::move(file), path);
}

std::unique_ptr<FileHandle> LinuxFileManager::OpenForWriting(const std::string& path,
                                                             const std::string& spared) {
  // Most files are new, and then nothing has to be looked at.
  FileDescriptor file = Open(path, O_WRONLY | O_CREAT | O_EXCL);
  if (!file.IsOpen() && errno == EEXIST) {
    file = Open(path, O_WRONLY | O_CREAT);
    if (file.IsOpen() && !Empty(file, spared)) return nullptr;
  }
  if (!file.IsOpen()) return nullptr;
  return std::make_unique<LinuxFileHandle>(std::move(file), path);
}

std::string LinuxFileManager::CachesDirectory() const {
  const std::string home = UserCacheHome();
  return home.empty() ? home : home + '/' + ProgramName();
}

std::string LinuxFileManager::GroupContainerDirectory(const std::string& group) const {
  if (!IsNameOfOneFolder(group)) return {};
  const std::string home = UserDataHome();
  return home.empty() ? home : home + "/group-containers/" + group;
}

}  // namespace Platform
