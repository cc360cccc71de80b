#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <string>
#include <thread>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/socket.h>
#include <unistd.h>

#include "platform/linux/FileDescriptor.h"
#include "platform/linux/LinuxSystemLog.h"
#include "support/StandardErrorRedirection.h"
#include "support/WaitUntil.h"

namespace {

using Platform::FileDescriptor;
using Platform::LinuxSystemLog;
using testing::EndsWith;
using testing::MatchesRegex;
using TestSupport::StandardErrorCapture;
using TestSupport::StandardErrorRedirection;

struct TwoEnds {
  FileDescriptor reading;
  FileDescriptor writing;
};

TwoEnds MakePipe(int flags = 0) {
  std::array<int, 2> ends{};
  EXPECT_EQ(::pipe2(ends.data(), O_CLOEXEC | flags), 0);
  return {FileDescriptor(ends[0]), FileDescriptor(ends[1])};
}

std::string ReadUntilEnd(const FileDescriptor& file) {
  std::string text;
  std::array<char, 65536> buffer{};
  for (;;) {
    const ssize_t count = ::read(file.Number(), buffer.data(), buffer.size());
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return text;
    text.append(buffer.data(), static_cast<std::size_t>(count));
  }
}

TEST(LinuxSystemLog, PutsTimeProcessAndThreadBeforeTheLine) {
  const StandardErrorCapture capture;
  LinuxSystemLog().Write("the line");
  const std::string prefix =
      "[0-9]+-[0-9][0-9]-[0-9][0-9] [0-9][0-9]:[0-9][0-9]:[0-9][0-9]"
      "\\.[0-9][0-9][0-9] platform_linux_";
  const std::string ids =
      "\\[" + std::to_string(::getpid()) + ":" + std::to_string(::gettid()) + "\\] ";
  EXPECT_THAT(capture.Text(), MatchesRegex(prefix + "[a-z]*" + ids + "the line\n"));
}

TEST(LinuxSystemLog, WritesEachLineAtOnce) {
  std::array<int, 2> ends{};
  ASSERT_EQ(::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data()), 0);
  const FileDescriptor reading(ends[0]);
  {
    const FileDescriptor writing(ends[1]);
    const StandardErrorRedirection redirection(writing.Number());
    LinuxSystemLog().Write("one");
    LinuxSystemLog().Write("two\nlines");
  }
  std::array<char, 1000> packet{};
  const auto next = [&] {
    const ssize_t count = ::recv(reading.Number(), packet.data(), packet.size(), 0);
    return std::string(packet.data(), static_cast<std::size_t>(count > 0 ? count : 0));
  };
  EXPECT_THAT(next(), EndsWith("] one\n"));
  EXPECT_THAT(next(), EndsWith("] two\nlines\n"));
  EXPECT_EQ(next(), "");
}

TEST(LinuxSystemLog, LeavesErrnoAlone) {
  const StandardErrorRedirection redirection(-1);
  errno = EDOM;
  LinuxSystemLog().Write("nobody hears this");
  EXPECT_EQ(errno, EDOM);
}

TEST(LinuxSystemLog, LosesLinesWhenStandardErrorIsClosed) {
  {
    const StandardErrorRedirection redirection(-1);
    LinuxSystemLog().Write("lost");
  }
  const StandardErrorCapture capture;
  LinuxSystemLog().Write("kept");
  EXPECT_THAT(capture.Text(), EndsWith("] kept\n"));
}

TEST(LinuxSystemLog, SurvivesAReaderThatWentAway) {
  TwoEnds pipe = MakePipe();
  pipe.reading.Close();
  const StandardErrorRedirection redirection(pipe.writing.Number());
  LinuxSystemLog().Write("lost");
  sigset_t pending{};
  ::sigpending(&pending);
  EXPECT_EQ(::sigismember(&pending, SIGPIPE), 0);
}

TEST(LinuxSystemLog, GivesUpOnAReaderThatDoesNotRead) {
  const TwoEnds pipe = MakePipe(O_NONBLOCK);
  const StandardErrorRedirection redirection(pipe.writing.Number());
  LinuxSystemLog().Write(std::string(10'000'000, 'x'));
  std::array<char, 4> start{};
  EXPECT_EQ(::read(pipe.reading.Number(), start.data(), start.size()), 4);
}

TEST(LinuxSystemLog, KeepsLongLinesTogetherInAPipe) {
  constexpr int kLines = 20;
  TwoEnds pipe = MakePipe();
  std::string text;
  std::thread reader([&] { text = ReadUntilEnd(pipe.reading); });
  {
    const StandardErrorRedirection redirection(pipe.writing.Number());
    const auto write = [](char character) {
      LinuxSystemLog log;
      for (int line = 0; line < kLines; ++line) log.Write(std::string(200'000, character));
    };
    std::thread other(write, 'a');
    write('b');
    other.join();
  }
  pipe.writing.Close();
  reader.join();
  for (const char* broken : {"ab", "ba"}) {
    EXPECT_EQ(text.find(broken), std::string::npos);
  }
  for (const char character : {'a', 'b'}) {
    const std::string line = "] " + std::string(200'000, character) + "\n";
    int count = 0;
    for (auto at = text.find(line); at != std::string::npos; at = text.find(line, at + 1)) ++count;
    EXPECT_EQ(count, kLines);
  }
}

std::atomic<int> signalsHandled = 0;

extern "C" void CountSignal(int) { ++signalsHandled; }

TEST(LinuxSystemLog, FinishesALineThatSignalsInterrupt) {
  signalsHandled = 0;
  struct sigaction action {};
  struct sigaction former {};
  action.sa_handler = CountSignal;
  ASSERT_EQ(::sigaction(SIGUSR1, &action, &former), 0);
  TwoEnds pipe = MakePipe();
  const std::string line(300'000, 'x');
  std::string text;
  {
    const StandardErrorRedirection redirection(pipe.writing.Number());
    std::thread writer([&] { LinuxSystemLog().Write(line); });
    // Nobody reads yet, so the writer waits at the full pipe again after each signal.
    for (int sent = 1; sent <= 20; ++sent) {
      ::pthread_kill(writer.native_handle(), SIGUSR1);
      EXPECT_TRUE(TestSupport::WaitUntil([&] { return signalsHandled >= sent; }));
    }
    std::array<char, 10'000> buffer{};
    while (text.size() < line.size()) {
      const ssize_t count = ::read(pipe.reading.Number(), buffer.data(), buffer.size());
      ASSERT_GT(count, 0);
      text.append(buffer.data(), static_cast<std::size_t>(count));
    }
    writer.join();
  }
  pipe.writing.Close();
  text += ReadUntilEnd(pipe.reading);
  ::sigaction(SIGUSR1, &former, nullptr);
  EXPECT_TRUE(text.ends_with("] " + line + "\n"));
}

}  // namespace
