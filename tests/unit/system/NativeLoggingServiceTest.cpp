#include <algorithm>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>

#include "VelmoraCore/Log.h"
#include "services/system/NativeLoggingService.h"
#include "support/FailingPorts.h"
#include "support/FakeHost.h"

namespace {

using testing::ElementsAre;
using TestSupport::FakeHost;
using Velmora::CreateNativeLoggingService;

TEST(NativeLoggingService, WritesTagAndMessageWithTheLevel) {
  const FakeHost host;
  const auto service = CreateNativeLoggingService();
  service->Debug("Tag", "a message");
  service->Warning("Tag", "a message");
  service->Error("Tag", "a message");
  EXPECT_THAT(host.systemLog->Lines(),
              ElementsAre("[VXSDK DEBUG <Tag>]: a message", "[VXSDK WARNING <Tag>]: a message",
                          "[VXSDK ERROR <Tag>]: a message"));
}

TEST(NativeLoggingService, PrintsNullForAnEmptyTag) {
  const FakeHost host;
  CreateNativeLoggingService()->Debug("", "a message");
  EXPECT_THAT(host.systemLog->Lines(), ElementsAre("[VXSDK DEBUG <(null)>]: a message"));
}

TEST(NativeLoggingService, PrintsNullForAnEmptyMessage) {
  const FakeHost host;
  CreateNativeLoggingService()->Error("Tag", "");
  EXPECT_THAT(host.systemLog->Lines(), ElementsAre("[VXSDK ERROR <Tag>]: (null)"));
}

TEST(NativeLoggingService, WritesPlaceholdersInATextAsTheyStand) {
  const FakeHost host;
  CreateNativeLoggingService()->Warning("%n%s", "100%s %@ %n");
  EXPECT_THAT(host.systemLog->Lines(), ElementsAre("[VXSDK WARNING <%n%s>]: 100%s %@ %n"));
}

TEST(NativeLoggingService, EndsATextAtItsFirstZeroByte) {
  const FakeHost host;
  CreateNativeLoggingService()->Debug(std::string("Tag\0more", 8), std::string("text\0more", 9));
  EXPECT_THAT(host.systemLog->Lines(), ElementsAre("[VXSDK DEBUG <Tag>]: text"));
}

TEST(NativeLoggingService, PrintsNullForATextThatIsNoUtf8) {
  const FakeHost host;
  CreateNativeLoggingService()->Debug("Tag", "\xFF\xFE");
  EXPECT_THAT(host.systemLog->Lines(), ElementsAre("[VXSDK DEBUG <Tag>]: (null)"));
}

TEST(NativeLoggingService, WritesLinesOfTenMegabytesInFull) {
  const FakeHost host;
  const std::string message(10'000'000, 'm');
  CreateNativeLoggingService()->Debug("Tag", message);
  const std::vector<std::string> lines = host.systemLog->Lines();
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_EQ(lines[0].size(), message.size() + 21);
  EXPECT_TRUE(lines[0].ends_with(message));
}

TEST(NativeLoggingService, SurvivesALogThatFails) {
  const FakeHost host;
  Platform::Host::Install(TestSupport::WithFailingPorts(host.Copy()));
  const auto service = CreateNativeLoggingService();
  EXPECT_NO_THROW(service->Debug("Tag", "a message"));
  EXPECT_NO_THROW(service->Warning("Tag", "a message"));
  EXPECT_NO_THROW(service->Error("Tag", "a message"));
  EXPECT_TRUE(host.systemLog->Lines().empty());
}

TEST(NativeLoggingService, ReceivesTraceLinesOfTheCoreAsDebug) {
  const FakeHost host;
  const Velmora::LoggingMode formerLevel = Velmora::Log::GetLogLevel();
  Velmora::Log::SetLogLevel(Velmora::LoggingMode::Trace);
  Velmora::Log::SetLoggingService(CreateNativeLoggingService());
  Velmora::Log::Trace("Tag", "line %d", 1);
  Velmora::Log::SetLoggingService(nullptr);
  Velmora::Log::SetLogLevel(formerLevel);
  EXPECT_THAT(host.systemLog->Lines(), ElementsAre("[VXSDK DEBUG <Tag>]: line 1"));
}

TEST(NativeLoggingService, KeepsLinesOfSeveralThreadsWhole) {
  const FakeHost host;
  const auto service = CreateNativeLoggingService();
  constexpr int kLinesEach = 200;
  std::vector<std::thread> threads;
  for (const char* tag : {"A", "B", "C", "D"}) {
    threads.emplace_back([&service, tag] {
      for (int i = 0; i < kLinesEach; ++i) service->Debug(tag, "line");
    });
  }
  for (std::thread& thread : threads) thread.join();
  const std::vector<std::string> lines = host.systemLog->Lines();
  for (const std::string tag : {"A", "B", "C", "D"}) {
    EXPECT_EQ(std::count(lines.begin(), lines.end(), "[VXSDK DEBUG <" + tag + ">]: line"),
              kLinesEach);
  }
  EXPECT_EQ(lines.size(), 4U * kLinesEach);
}

}  // namespace
