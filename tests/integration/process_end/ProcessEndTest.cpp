#include <array>
#include <chrono>
#include <cstdio>
#include <string>

#include <gtest/gtest.h>
#include <sys/wait.h>

#include "support/ScopedEnvironment.h"

namespace {

constexpr int kEnded = 7;

struct Ending {
  int status = 0;
  std::string output;
};

// Runs the app to its end; timeout(1) stops one that hangs. A forked copy is not searched for
// leaks: what the threads that it has not own would look like some.
Ending RunApp(const std::string& way) {
  const std::string options = way.ends_with("fork") ? "ASAN_OPTIONS=detect_leaks=0 " : "";
  const std::string command = options + "timeout 30 " APP " " + way + " 2>&1";
  Ending ending;
  std::FILE* pipe = ::popen(command.c_str(), "r");
  if (pipe == nullptr) return ending;
  std::array<char, 4096> buffer{};
  while (const std::size_t count = std::fread(buffer.data(), 1, buffer.size(), pipe)) {
    ending.output.append(buffer.data(), count);
  }
  ending.status = ::pclose(pipe);
  return ending;
}

void ExpectCleanEnd(const Ending& ending) {
  EXPECT_TRUE(WIFEXITED(ending.status)) << "status " << ending.status;
  EXPECT_EQ(WEXITSTATUS(ending.status), kEnded);
  EXPECT_EQ(ending.output, "");
}

TEST(ProcessEnd, FindsNoThreadOfTheSdkWhenStaticObjectsAreDestroyed) {
  for (int run = 0; run < 10; ++run) ExpectCleanEnd(RunApp("return"));
}

TEST(ProcessEnd, MayBeAskedForOnAThreadOfTheSdk) {
  const auto begin = std::chrono::steady_clock::now();
  const Ending ending = RunApp("exit");
  EXPECT_EQ(WEXITSTATUS(ending.status), kEnded) << ending.status << ending.output;
  EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(20));
}

TEST(ProcessEnd, DoesNotKeepAForkedCopyWaitingForThreadsItHasNot) {
  // What the stacks of the missing threads held would count as leaked.
  const TestSupport::ScopedEnvironment options("ASAN_OPTIONS", "detect_leaks=0");
  ExpectCleanEnd(RunApp("fork"));
}

TEST(ProcessEnd, EndsTheMainQueueFirst) {
  for (int run = 0; run < 5; ++run) ExpectCleanEnd(RunApp("queue"));
}

TEST(ProcessEnd, MayBeAskedForOnTheMainQueue) {
  const Ending ending = RunApp("queue-exit");
  EXPECT_EQ(WEXITSTATUS(ending.status), kEnded) << ending.status << ending.output;
}

TEST(ProcessEnd, DoesNotKeepAForkedCopyWaitingForTheMainQueue) {
  ExpectCleanEnd(RunApp("queue-fork"));
}

TEST(ProcessEnd, LeavesJsonToWhatWasMadeAfterTheDevice) { ExpectCleanEnd(RunApp("read")); }

}  // namespace
