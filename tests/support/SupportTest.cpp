// What other tests rely on to fail must be able to fail itself.

#include <filesystem>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest-spi.h>

#include "QEXCore_iOS/Platform/DeviceError.h"
#include "VelmoraCore/Log.h"
#include "support/FakeHost.h"
#include "support/LogCapture.h"
#include "support/TemporaryDirectory.h"
#include "support/WaitUntil.h"

namespace {

using Platform::Host;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using TestSupport::FakeHost;
using TestSupport::FileFault;
using TestSupport::LogCapture;
using TestSupport::LogLevel;
using TestSupport::LogLine;
using Velmora::Log;
using Velmora::LoggingMode;

int LineOfCall(TestSupport::CallPlace place = {}) { return place.line; }

TEST(CallPlace, IsThePlaceOfTheCall) { EXPECT_EQ(LineOfCall(), __LINE__); }

TEST(LogCapture, FailsTheTestForALineThatNobodyExpected) {
  EXPECT_NONFATAL_FAILURE(
      {
        const LogCapture log;
        Log::Warning("Tag", "surprise %d", 1);
      },
      "unexpected log line: Warning <Tag> \"surprise 1\"");
}

TEST(LogCapture, FailsTheTestForALineThatNeverCame) {
  EXPECT_NONFATAL_FAILURE(
      {
        LogCapture log;
        log.ExpectLine(LogLevel::Error, "Tag", HasSubstr("missing"));
      },
      "expected log line never came: Error <Tag> with a message that has substring \"missing\"");
}

TEST(LogCapture, TellsLevelTagAndMessageApart) {
  LogCapture log;
  Log::Debug("A", "x");
  Log::Warning("A", "x");
  Log::Error("B", "x");
  Log::Trace("A", "y");
  log.ExpectLine(LogLevel::Warning, "A", "x");
  EXPECT_THAT(log.TakeLines(),
              ElementsAre(LogLine{LogLevel::Debug, "A", "x"}, LogLine{LogLevel::Error, "B", "x"},
                          LogLine{LogLevel::Debug, "A", "y"}));
}

TEST(LogCapture, ClaimsOneLineForEachExpectation) {
  LogCapture log;
  log.ExpectLine(LogLevel::Debug, "A", "x");
  Log::Debug("A", "x");
  Log::Debug("A", "x");
  EXPECT_THAT(log.TakeLines(), ElementsAre(LogLine{LogLevel::Debug, "A", "x"}));
}

TEST(LogCapture, AllowsAnyNumberOfLines) {
  LogCapture log;
  log.AllowLines(LogLevel::Debug, "A", HasSubstr("x"));
  Log::Debug("A", "x1");
  Log::Debug("A", "x2");
  EXPECT_THAT(log.TakeLines(), IsEmpty());
  Log::Debug("A", "x3");
}

TEST(LogCapture, WaitsForLinesOfOtherThreads) {
  LogCapture log;
  std::thread other([] { Log::Error("A", "from afar"); });
  EXPECT_TRUE(log.WaitForLine(LogLevel::Error, "A", "from afar"));
  other.join();
}

TEST(LogCapture, DropsLinesBeyondItsLevelAndPutsTheFormerLevelBack) {
  const LoggingMode former = Log::GetLogLevel();
  {
    const LogCapture log(LoggingMode::Warning);
    Log::Debug("A", "too much");
    EXPECT_EQ(Log::GetLogLevel(), LoggingMode::Warning);
  }
  EXPECT_EQ(Log::GetLogLevel(), former);
}

TEST(FakeHost, IsTheDeviceForAsLongAsItLives) {
  const auto former = Host::Current();
  {
    const FakeHost outer;
    EXPECT_EQ(Host::Current()->bundle, outer.bundle);
    {
      const FakeHost inner;
      EXPECT_EQ(Host::Current()->bundle, inner.bundle);
      EXPECT_EQ(Host::Current()->systemLog, inner.systemLog);
    }
    EXPECT_EQ(Host::Current()->bundle, outer.bundle);
  }
  EXPECT_EQ(Host::Current()->bundle, former->bundle);
}

TEST(FakeFileManager, FailsAsItWasToldUntilItIsHealed) {
  const TestSupport::TemporaryDirectory folder;
  TestSupport::FakeFileManager files;
  files.Fail(FileFault::CreateDirectory, Platform::Error("test", 7, "No."));
  Platform::Error error;
  EXPECT_FALSE(files.CreateDirectory(folder.PathOf("a"), &error));
  EXPECT_EQ(error, Platform::Error("test", 7, "No."));
  files.FailSilently(FileFault::CreateDirectory);
  error = Platform::Error();
  EXPECT_FALSE(files.CreateDirectory(folder.PathOf("a"), &error));
  EXPECT_EQ(error, Platform::Error());
  files.Heal();
  EXPECT_TRUE(files.CreateDirectory(folder.PathOf("a"), &error));
}

TEST(FakeFileManager, StopsHandlesThatAreAlreadyOpen) {
  const TestSupport::TemporaryDirectory folder;
  TestSupport::FakeFileManager files;
  const auto reading = files.OpenForReading(folder.WriteFile("a", "contents"));
  const auto writing = files.OpenForWriting(folder.PathOf("b"), "");
  files.FailReadsAfter(3);
  files.FailWritesAfter(3);
  char bytes[4] = {};
  EXPECT_EQ(reading->Read(bytes, 3), 3U);
  EXPECT_THROW(reading->Read(bytes, 1), Platform::DeviceError);
  EXPECT_THROW(writing->Write("1234", 4), Platform::DeviceError);
  EXPECT_EQ(writing->Offset(), 3U);
  EXPECT_EQ(TestSupport::ReadFileBytes(folder.PathOf("b")), "123");
}

TEST(FakeBundle, KnowsOnlyTheResourcesThatItWasGiven) {
  TestSupport::FakeBundle bundle;
  const std::string path = bundle.AddResource("a.json", "{}");
  EXPECT_EQ(bundle.PathForResource("a.json"), path);
  EXPECT_EQ(TestSupport::ReadFileBytes(path), "{}");
  EXPECT_EQ(bundle.PathForResource("b.json"), "");
  bundle.SetInfo("key", "value");
  EXPECT_EQ(bundle.ObjectForInfoDictionaryKey("key").AsString(), "value");
  bundle.SetInfo("key", {});
  EXPECT_TRUE(bundle.ObjectForInfoDictionaryKey("key").IsAbsent());
}

TEST(TemporaryDirectory, GoesWithAllThatIsInIt) {
  std::string path;
  {
    const TestSupport::TemporaryDirectory folder;
    path = folder.Path();
    folder.WriteFile("a/b/c", "x");
    EXPECT_TRUE(std::filesystem::exists(path));
  }
  EXPECT_FALSE(std::filesystem::exists(path));
}

TEST(WaitUntil, GivesTheLastAnswer) {
  int questions = 0;
  EXPECT_TRUE(TestSupport::WaitUntil([&] { return ++questions == 3; }));
  EXPECT_FALSE(TestSupport::WaitUntil([] { return false; }, std::chrono::milliseconds(5)));
}

}  // namespace
