#include <string>
#include <thread>

#include <gmock/gmock.h>

#include "platform/linux/LinuxProcessInfo.h"
#include "support/FakeProcessInfo.h"

namespace {

template <class Implementation>
class ProcessInfoContractTest : public testing::Test {
 protected:
  Implementation processInfo_;
};

using Implementations = testing::Types<Platform::LinuxProcessInfo, TestSupport::FakeProcessInfo>;
TYPED_TEST_SUITE(ProcessInfoContractTest, Implementations);

TYPED_TEST(ProcessInfoContractTest, EndsTheVersionWithTheBuildInParentheses) {
  EXPECT_THAT(this->processInfo_.OperatingSystemVersionString(),
              testing::MatchesRegex("Version [^ ]+ \\(Build [^ ]+\\)"));
}

TYPED_TEST(ProcessInfoContractTest, DescribesEveryFrameOfTheStackOnOneLine) {
  const auto symbols = this->processInfo_.CallStackSymbols();
  EXPECT_GE(symbols.size(), 2U);
  for (const std::string& symbol : symbols) {
    EXPECT_NE(symbol, "");
    EXPECT_EQ(symbol.find('\n'), std::string::npos) << symbol;
  }
}

TYPED_TEST(ProcessInfoContractTest, KeepsItsIdentifier) {
  EXPECT_GT(this->processInfo_.ProcessIdentifier(), 0);
  EXPECT_EQ(this->processInfo_.ProcessIdentifier(), this->processInfo_.ProcessIdentifier());
}

TYPED_TEST(ProcessInfoContractTest, TakesAnyThreadName) {
  std::thread thread([this] {
    for (const char* name : {"fifteen bytes!!", "", "a name that no system takes whole"}) {
      EXPECT_NO_THROW(this->processInfo_.SetCurrentThreadName(name));
    }
  });
  thread.join();
}

}  // namespace
