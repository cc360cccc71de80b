// Modules on a device that has no thread left. Each test runs in a process of its own, which can
// have no further thread at all after a while.

#include <atomic>
#include <cerrno>
#include <functional>
#include <memory>
#include <string>

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "VelmoraCore/ErrorCodes.h"
#include "hub/EventHub.h"
#include "support/FakePlatformServices.h"
#include "support/LogCapture.h"
#include "support/RefusedSystemCalls.h"
#include "unit/core/hub/Gate.h"
#include "unit/core/hub/HubDoubles.h"

namespace {

using Calls = std::vector<std::string>;
using testing::StartsWith;
using TestSupport::LogLevel;

bool RefuseThreads() { return TestSupport::RefuseSystemCalls({SYS_clone, SYS_clone3}, EAGAIN); }

// Runs `test` in a child process; whether it passed.
bool PassesInChild(const std::function<void()>& test) {
  const pid_t child = ::fork();
  if (child == 0) {
    test();
    ::_exit(testing::Test::HasFailure() ? 1 : 0);
  }
  int status = 0;
  EXPECT_EQ(::waitpid(child, &status, 0), child);
  return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

std::shared_ptr<Velmora::EventHub> StartedHub() {
  auto hub = Velmora::EventHub::Create(std::make_shared<TestSupport::FakePlatformServices>());
  hub->Start();
  return hub;
}

TEST(NoMoreThreads, AModuleThatCannotBeStartedIsRefused) {
  EXPECT_TRUE(PassesInChild([] {
    TestSupport::LogCapture log(Velmora::LoggingMode::Debug);
    const auto hub = StartedHub();
    ASSERT_TRUE(RefuseThreads());
    const auto module = std::make_shared<RecordingModule>("module");
    const auto error = hub->RegisterModule(module);
    ASSERT_TRUE(error.has_value());
    EXPECT_EQ(error->GetCode(), Velmora::ErrorCodes::kStdException);
    EXPECT_EQ(module->Calls(), Calls());
  }));
}

TEST(NoMoreThreads, AModuleThatCannotFollowItsPredecessorIsTold) {
  EXPECT_TRUE(PassesInChild([] {
    TestSupport::LogCapture log(Velmora::LoggingMode::Debug);
    const auto hub = StartedHub();
    const auto witness = std::make_shared<RecordingListener>();
    const auto other = std::make_shared<RecordingModule>("other");
    other->onRegister = [witness](const ModuleServices& services) {
      services->RegisterListener(witness, "test.type", "test.source");
    };
    EXPECT_FALSE(hub->RegisterModule(other));
    const auto gate = std::make_shared<Gate>();
    const auto former = std::make_shared<RecordingModule>("module");
    former->onUnregister = [gate] { gate->Pass(); };
    EXPECT_FALSE(hub->RegisterModule(former));
    EXPECT_TRUE(former->WaitForCalls({"register"}));
    former->Services()->UnregisterExtension();
    gate->AwaitArrivals();
    auto successor = std::make_shared<RecordingModule>("module");
    EXPECT_FALSE(hub->RegisterModule(successor)) << "it waits for its predecessor's end";
    std::atomic<bool> isFollowerCalled = false;
    hub->PostAndFollow(NewEvent("follow"), [&isFollowerCalled] { isFollowerCalled = true; });
    hub->Post(NewEvent("next"));
    EXPECT_TRUE(witness->WaitForCount(2)) << "the event and the one after it have been handled";
    ASSERT_TRUE(RefuseThreads());
    log.ExpectLine(LogLevel::Error, "EventHub", StartsWith("module module could not be started: "));
    gate->Open();
    EXPECT_TRUE(successor->WaitForCalls({"error std.exception"}));
    EXPECT_TRUE(TestSupport::WaitUntil([&] { return successor.use_count() == 1; }))
        << "the hub holds it no longer";
    EXPECT_TRUE(TestSupport::WaitUntil([&] { return isFollowerCalled.load(); }))
        << "nobody waits for it any more";
    EXPECT_TRUE(hub->RegisterModule(former).has_value());
    hub->Dispose(std::chrono::seconds(10));
    EXPECT_EQ(successor->Calls(), Calls{"error std.exception"});
  }));
}

}  // namespace
