// Unpacks an archive under circumstances that would outlive a test. Prints "done", or the code and
// the message of the error, and then whether a file was left open.
//
//   archive_worker plain|again|unprivileged|full <archive> <destination>
//
// `again` goes on for ever, `unprivileged` gives up the rights of root first, and `full` unpacks
// into a file system of one megabyte; where none may be mounted, no file may grow beyond that.

#include <csignal>
#include <filesystem>
#include <iostream>
#include <iterator>
#include <string>

#include <grp.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <unistd.h>

#include "VelmoraCore/SdkError.h"
#include "services/filesystem/NativeCompressedFileService.h"

namespace {

namespace fs = std::filesystem;

std::size_t OpenFiles() {
  const fs::directory_iterator descriptors("/proc/self/fd");
  return static_cast<std::size_t>(std::distance(begin(descriptors), end(descriptors)));
}

std::string Extract(const char* archive, const char* destination) {
  try {
    const auto service = Velmora::CreateNativeCompressedFileService();
    return service->Extract(archive, Velmora::CompressedFileType::Zip, destination) ? "done"
                                                                                    : "not served";
  } catch (const Velmora::SdkError& error) {
    return error.what();
  }
}

bool GiveUpRights() {
  constexpr unsigned kNobody = 65534;
  if (::geteuid() != 0) return true;
  return ::setgroups(0, nullptr) == 0 && ::setgid(kNobody) == 0 && ::setuid(kNobody) == 0;
}

bool MountSmallFileSystem(const char* place) {
  if (::unshare(CLONE_NEWNS) != 0 && ::unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0) return false;
  return ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
         ::mount("tmpfs", place, "tmpfs", 0, "size=1m") == 0;
}

bool LimitFileSizes() {
  const rlimit limit{1 << 20, 1 << 20};
  return std::signal(SIGXFSZ, SIG_IGN) != SIG_ERR && ::setrlimit(RLIMIT_FSIZE, &limit) == 0;
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 4) return 2;
  const std::string circumstances = arguments[1];
  if (circumstances == "unprivileged" && !GiveUpRights()) return 3;
  if (circumstances == "full" && !MountSmallFileSystem(arguments[3]) && !LimitFileSizes()) return 4;

  const std::size_t before = OpenFiles();
  std::string result;
  do {
    result = Extract(arguments[2], arguments[3]);
  } while (circumstances == "again" && result == "done");
  std::cout << result << '\n';
  if (OpenFiles() != before) std::cout << "a file was left open\n";
}
