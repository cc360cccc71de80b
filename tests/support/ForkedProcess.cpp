#include "support/ForkedProcess.h"

#include <cerrno>
#include <cstdio>

#include <grp.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

namespace TestSupport {
namespace {

enum ExitStatus { kTrue, kFalse, kCannotPrepare };

bool GiveUpRights() {
  constexpr uid_t kNobody = 65534;
  if (::geteuid() != 0) return true;
  return ::setgroups(0, nullptr) == 0 && ::setgid(kNobody) == 0 && ::setuid(kNobody) == 0;
}

bool MountSmallFileSystem(const char* place) {
  if (::unshare(CLONE_NEWNS) != 0 && ::unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0) return false;
  return ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
         ::mount("tmpfs", place, "tmpfs", 0, "size=1m") == 0;
}

std::optional<bool> InForkedProcess(const std::function<bool()>& prepare,
                                    const std::function<bool()>& attempt) {
  std::fflush(nullptr);
  const pid_t child = ::fork();
  if (child == 0) {
    ExitStatus status = kCannotPrepare;
    if (prepare()) status = attempt() && !testing::Test::HasFailure() ? kTrue : kFalse;
    std::fflush(nullptr);
    ::_exit(status);
  }
  int status = 0;
  while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  if (WIFEXITED(status) && WEXITSTATUS(status) == kCannotPrepare) return std::nullopt;
  EXPECT_TRUE(WIFEXITED(status)) << "ended by signal " << WTERMSIG(status);
  return WIFEXITED(status) && WEXITSTATUS(status) == kTrue;
}

}  // namespace

bool AsStranger(const std::function<bool()>& attempt) {
  const auto result = InForkedProcess(GiveUpRights, attempt);
  EXPECT_TRUE(result) << "cannot become another user";
  return result.value_or(false);
}

std::optional<bool> OnSmallDisk(const std::string& place, const std::function<bool()>& attempt) {
  return InForkedProcess([&] { return MountSmallFileSystem(place.c_str()); }, attempt);
}

}  // namespace TestSupport
