#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>

#include "platform/linux/LinuxSystemLog.h"
#include "support/FakeSystemLog.h"
#include "support/StandardErrorRedirection.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// Each subject tells which texts reached the log, given that none of them begins with a line break.
class LinuxSubject {
 public:
  Platform::SystemLog& Log() { return log_; }

  std::vector<std::string> Texts() const {
    const std::string mark = "[" + std::to_string(::getpid()) + ":";
    const std::string written = capture_.Text();
    std::vector<std::string> texts;
    std::size_t start = written.find(mark);
    while (start != std::string::npos) {
      const std::size_t text = written.find("] ", start) + 2;
      start = written.find(mark, text);
      // The next line begins with its time stamp, behind the end of this one.
      const std::size_t end =
          start == std::string::npos ? written.size() - 1 : written.rfind('\n', start);
      texts.push_back(written.substr(text, end - text));
    }
    return texts;
  }

 private:
  Platform::LinuxSystemLog log_;
  TestSupport::StandardErrorCapture capture_;
};

class FakeSubject {
 public:
  Platform::SystemLog& Log() { return log_; }
  std::vector<std::string> Texts() const { return log_.Lines(); }

 private:
  TestSupport::FakeSystemLog log_;
};

template <class Subject>
class SystemLogContractTest : public testing::Test {
 protected:
  Subject subject_;
};

using Subjects = testing::Types<LinuxSubject, FakeSubject>;
TYPED_TEST_SUITE(SystemLogContractTest, Subjects);

TYPED_TEST(SystemLogContractTest, WritesNothingUnasked) {
  EXPECT_THAT(this->subject_.Texts(), IsEmpty());
}

TYPED_TEST(SystemLogContractTest, WritesEachLineInItsOrder) {
  this->subject_.Log().Write("first");
  this->subject_.Log().Write("");
  this->subject_.Log().Write("third %s %n");
  EXPECT_THAT(this->subject_.Texts(), ElementsAre("first", "", "third %s %n"));
}

TYPED_TEST(SystemLogContractTest, WritesEveryByteAsItStands) {
  const std::string odd("zero \0 break \n latin \xe9 end", 25);
  this->subject_.Log().Write(odd);
  EXPECT_THAT(this->subject_.Texts(), ElementsAre(odd));
}

TYPED_TEST(SystemLogContractTest, WritesLinesOfTenMegabytes) {
  const std::string large(10'000'000, 'x');
  this->subject_.Log().Write(large);
  const auto texts = this->subject_.Texts();
  ASSERT_EQ(texts.size(), 1U);
  EXPECT_TRUE(texts.front() == large);
}

TYPED_TEST(SystemLogContractTest, KeepsTheLinesOfManyThreadsApart) {
  constexpr int kThreads = 4;
  constexpr int kLines = 200;
  std::vector<std::string> expected;
  std::vector<std::thread> threads;
  for (int thread = 0; thread < kThreads; ++thread) {
    std::vector<std::string> lines;
    for (int line = 0; line < kLines; ++line) {
      lines.push_back(std::string(static_cast<std::size_t>(line), 'x') + std::to_string(thread));
    }
    expected.insert(expected.end(), lines.begin(), lines.end());
    threads.emplace_back([this, lines] {
      for (const std::string& line : lines) this->subject_.Log().Write(line);
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_THAT(this->subject_.Texts(), testing::UnorderedElementsAreArray(expected));
}

}  // namespace
