// User defaults in a process that forks. Children leave with _exit: they must not end what belongs
// to the test program.

#include <array>
#include <atomic>
#include <cerrno>
#include <functional>
#include <thread>

#include <fcntl.h>
#include <poll.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include "Fixture.h"
#include "RawDatabase.h"
#include "support/WaitUntil.h"

namespace {

using Platform::Value;

class SqliteUserDefaultsFork : public SqliteUserDefaultsTest {};

int ExitStatus(pid_t child) {
  int status = 0;
  while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

// Carries single characters between processes.
class Pipe {
 public:
  Pipe() { EXPECT_EQ(::pipe2(ends_.data(), O_CLOEXEC), 0); }
  ~Pipe() {
    for (const int end : ends_) ::close(end);
  }
  Pipe(const Pipe&) = delete;
  Pipe& operator=(const Pipe&) = delete;

  void Send(char character) const { EXPECT_EQ(::write(ends_[1], &character, 1), 1); }

  // Zero when none comes in time.
  char Receive() const {
    constexpr int kPatienceInMilliseconds = 10'000;
    pollfd request{.fd = ends_[0], .events = POLLIN, .revents = 0};
    char character = 0;
    if (::poll(&request, 1, kPatienceInMilliseconds) == 1) {
      EXPECT_EQ(::read(ends_[0], &character, 1), 1);
    }
    return character;
  }

 private:
  std::array<int, 2> ends_{};
};

// The exit status of a child that does `work`: 0 where that gives true.
int RunInChild(const std::function<bool()>& work) {
  const pid_t child = ::fork();
  if (child == 0) ::_exit(work() ? 0 : 1);
  return ExitStatus(child);
}

TEST_F(SqliteUserDefaultsFork, LetsTheChildGoOnAndSeeWhatTheParentSees) {
  const auto defaults = NewStandard();
  defaults->SetObject("parent", 1);
  EXPECT_EQ(RunInChild([&] {
              if (!(defaults->ObjectForKey("parent") == Value(1))) return false;
              defaults->SetObject("child", 2);
              return defaults->ObjectForKey("child") == Value(2);
            }),
            0);
  EXPECT_EQ(defaults->ObjectForKey("child"), Value(2));
  defaults->SetObject("parent", 3);
  EXPECT_EQ(NewStandard()->ObjectForKey("parent"), Value(3));
}

TEST_F(SqliteUserDefaultsFork, LetsTheChildGoOnWhenTheParentEnds) {
  const Pipe fromChild;
  const Pipe toChild;
  const pid_t parent = ::fork();
  if (parent == 0) {
    const auto defaults = NewStandard();
    defaults->SetObject("k", 0);
    if (::fork() == 0) {
      defaults->SetObject("k", 1);
      fromChild.Send('1');
      if (toChild.Receive() == 'g') {
        for (int write = 2; write <= 500; ++write) defaults->SetObject("k", write);
      }
      fromChild.Send(defaults->ObjectForKey("k") == Value(500) ? 'y' : 'n');
    }
    ::_exit(0);
  }
  EXPECT_EQ(ExitStatus(parent), 0);
  EXPECT_EQ(fromChild.Receive(), '1');
  // Would clear up behind the parent if the child's connection did not count as open.
  EXPECT_EQ(RunRawSql(StandardPath(), "SELECT count(*) FROM defaults"), "1");
  toChild.Send('g');
  EXPECT_EQ(fromChild.Receive(), 'y');
  EXPECT_EQ(NewStandard()->ObjectForKey("k"), Value(500));
  EXPECT_EQ(RunRawSql(StandardPath(), "PRAGMA integrity_check"), "ok");
}

TEST_F(SqliteUserDefaultsFork, DoesNoHarmWhileOtherThreadsWrite) {
  const auto defaults = NewStandard();
  std::atomic<bool> stop{false};
  std::atomic<int> written{0};
  {
    const std::jthread writer([&] {
      while (!stop) defaults->SetObject("thread", ++written);
    });
    for (int round = 0; round < 20; ++round) {
      // Each fork finds the other thread in the midst of its writes.
      const int before = written;
      EXPECT_TRUE(TestSupport::WaitUntil([&] { return written > before + 1; }));
      const int atLeast = written - 1;
      EXPECT_EQ(RunInChild([&] {
                  const bool isNew = defaults->ObjectForKey("thread").AsInt32() >= atLeast;
                  defaults->SetObject("child", round);
                  return isNew && defaults->ObjectForKey("child") == Value(round);
                }),
                0);
      EXPECT_EQ(defaults->ObjectForKey("child"), Value(round));
    }
    stop = true;
  }
  EXPECT_EQ(defaults->ObjectForKey("thread"), Value(written.load()));
}

#if !defined(__SANITIZE_THREAD__)
TEST_F(SqliteUserDefaultsFork, IsNoticedWhereTheSystemCallWasMadeDirectly) {
  const auto defaults = NewStandard();
  defaults->SetObject("parent", 1);
  const auto child = static_cast<pid_t>(::syscall(SYS_clone, SIGCHLD, 0, 0, 0, 0));
  if (child == 0) {
    const bool seen = defaults->ObjectForKey("parent") == Value(1);
    defaults->SetObject("child", 2);
    ::_exit(seen && defaults->ObjectForKey("child") == Value(2) ? 0 : 1);
  }
  EXPECT_EQ(ExitStatus(child), 0);
  EXPECT_EQ(defaults->ObjectForKey("child"), Value(2));
}
#endif

}  // namespace
