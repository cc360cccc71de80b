// The move of the previous generation's data over real files, killed before each of its writes in
// turn, with what is then on disk beside what an undisturbed device would hold at that point.

#include <cerrno>
#include <csignal>
#include <cstddef>
#include <functional>
#include <limits>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>

#include "QEXCore_iOS/Platform/Date.h"
#include "interop/AppInfo.h"
#include "migration/QEXV4Migration.h"
#include "platform/linux/SqliteUserDefaultsProvider.h"
#include "support/FakeHost.h"
#include "support/LogCapture.h"
#include "support/TemporaryDirectory.h"

namespace {

using Platform::UserDefaults;
using Platform::UserDefaultsProvider;
using Platform::Value;
using Contents = std::map<std::string, Value>;

constexpr std::size_t kNever = std::numeric_limits<std::size_t>::max();
constexpr std::int64_t kInstallDate = 1'400'000'000;

// Counts the writes of all user defaults of a provider.
struct Interruption {
  std::size_t before = kNever;  // the write, counted from 0, that does not happen any more
  std::function<void()> interrupt;
  std::size_t writes = 0;

  void Count() {
    if (writes == before) interrupt();
    ++writes;
  }
};

class InterruptedDefaults final : public UserDefaults {
 public:
  InterruptedDefaults(std::shared_ptr<UserDefaults> real, Interruption& interruption)
      : real_(std::move(real)), interruption_(interruption) {}

  Value ObjectForKey(const std::string& key) const override { return real_->ObjectForKey(key); }
  void SetObject(const std::string& key, const Value& value) override {
    interruption_.Count();
    real_->SetObject(key, value);
  }
  void RemoveObject(const std::string& key) override {
    interruption_.Count();
    real_->RemoveObject(key);
  }
  void RemoveObjectsWithPrefix(const std::string& prefix) override {
    interruption_.Count();
    real_->RemoveObjectsWithPrefix(prefix);
  }
  std::vector<std::string> KeysWithPrefix(const std::string& prefix) const override {
    return real_->KeysWithPrefix(prefix);
  }

 private:
  const std::shared_ptr<UserDefaults> real_;
  Interruption& interruption_;
};

class InterruptedProvider final : public UserDefaultsProvider {
 public:
  InterruptedProvider(std::shared_ptr<UserDefaultsProvider> real, Interruption& interruption)
      : real_(std::move(real)), interruption_(interruption) {}

  std::shared_ptr<UserDefaults> Standard() override { return Wrap(real_->Standard()); }
  bool SupportsSuites() const override { return real_->SupportsSuites(); }
  std::shared_ptr<UserDefaults> OpenSuite(const std::string& name) override {
    return Wrap(real_->OpenSuite(name));
  }

 private:
  std::shared_ptr<UserDefaults> Wrap(std::shared_ptr<UserDefaults> real) {
    return real ? std::make_shared<InterruptedDefaults>(std::move(real), interruption_) : nullptr;
  }

  const std::shared_ptr<UserDefaultsProvider> real_;
  Interruption& interruption_;
};

Value DateOf(std::int64_t seconds) {
  return Value::FromObject(std::make_shared<Platform::Date>(static_cast<double>(seconds)));
}

// As an installation of the previous generation left its settings.
void LeaveOldSettings(UserDefaults& defaults) {
  defaults.SetObject("KRVAcquisitionData", {{"campaign", "spring"}});
  defaults.SetObject("KORVOMOBILE_STOREDDEFAULTS_AID", "aid-1");
  defaults.SetObject("KORVOMOBILE_STOREDDEFAULTS_IGNOREAID", true);
  defaults.SetObject("KRVMobileLastTimestamp", 1'500'000'000);
  defaults.SetObject("LBXUserId", "user-1");
  defaults.SetObject("KRVMOBILE_PERSISTED_MID", "mid-1");
  defaults.SetObject("KRVMOBILE_PERSISTED_MID_HINT", "9");
  defaults.SetObject("KRVMOBILE_KEY_PUSH_ENABLED", true);
  defaults.SetObject("KRVMOBILE_KEY_PUSH_TOKEN", "token");
  defaults.SetObject("ZOMS_Mensurix_StoredDefaults_VisitorID", "visitor-1");
  defaults.SetObject("VRCK1", DateOf(kInstallDate));
  defaults.SetObject("VRCK2", "4.0.1");
  defaults.SetObject("VRCK5", DateOf(kInstallDate + 86'400));
  defaults.SetObject("VRCK6", 12);
  defaults.SetObject("VRCK7", true);
  defaults.SetObject("KRVMOBILE_QUORVEL_QVL_ID", "qvl-1");
  defaults.SetObject("the app's own", "stays");
}

Contents ContentsOf(const UserDefaults& defaults) {
  Contents contents;
  for (const std::string& key : defaults.KeysWithPrefix("")) {
    contents[key] = defaults.ObjectForKey(key);
  }
  return contents;
}

// How a process that does `work` ends: minus the signal that ended it, or its exit status.
int EndOfProcessThat(const std::function<void()>& work) {
  const pid_t process = ::fork();
  if (process == 0) {
    work();
    ::_exit(0);
  }
  int status = 0;
  while (::waitpid(process, &status, 0) < 0 && errno == EINTR) {
  }
  return WIFSIGNALED(status) ? -WTERMSIG(status) : WEXITSTATUS(status);
}

// With the name of the application group; none when it is empty.
class InterruptedMigration : public testing::TestWithParam<std::string> {
 protected:
  InterruptedMigration() {
    if (!GetParam().empty()) Velmora::AppInfo::SetAppGroup(GetParam());
  }
  ~InterruptedMigration() override { Velmora::AppInfo::SetAppGroup(std::nullopt); }

  static std::shared_ptr<UserDefaults> DefaultsOf(UserDefaultsProvider& provider) {
    return GetParam().empty() ? provider.Standard() : provider.OpenSuite(GetParam());
  }

  std::shared_ptr<UserDefaultsProvider> OnDisk(const std::string& folder) const {
    return std::make_shared<Platform::SqliteUserDefaultsProvider>(
        Platform::SqliteUserDefaultsProvider::Folders{folder + "/own", folder + "/shared"},
        host_.systemLog);
  }

  // Migrates on a device with these user defaults until it is interrupted. How many writes it made.
  std::size_t Migrate(const std::shared_ptr<UserDefaultsProvider>& provider, std::size_t before,
                      std::function<void()> interrupt) const {
    Interruption interruption{before, std::move(interrupt)};
    Platform::Host host = host_.Copy();
    host.userDefaults = std::make_shared<InterruptedProvider>(provider, interruption);
    Platform::Host::Install(host);
    QEXV4Migration::migrate();
    Platform::Host::Install(host_.Copy());
    return interruption.writes;
  }

  // What an undisturbed device holds after so many writes, and then after a whole migration.
  struct Expectation {
    Contents interrupted;
    Contents finished;
  };
  Expectation ExpectationFor(std::size_t before) const {
    struct Stop {};
    const auto provider = std::make_shared<TestSupport::FakeUserDefaultsProvider>();
    const std::shared_ptr<UserDefaults> defaults = DefaultsOf(*provider);
    LeaveOldSettings(*defaults);
    try {
      Migrate(provider, before, [] { throw Stop(); });
    } catch (const Stop&) {
      Platform::Host::Install(host_.Copy());
    }
    Contents interrupted = ContentsOf(*defaults);
    Migrate(provider, kNever, nullptr);
    return {std::move(interrupted), ContentsOf(*defaults)};
  }

  std::size_t CountWritesOfAWholeMigration() const {
    const auto provider = std::make_shared<TestSupport::FakeUserDefaultsProvider>();
    LeaveOldSettings(*DefaultsOf(*provider));
    return Migrate(provider, kNever, nullptr);
  }

  void ExpectOnDisk(const std::string& folder, const Contents& contents) const {
    EXPECT_EQ(ContentsOf(*DefaultsOf(*OnDisk(folder))), contents);
  }

  const TestSupport::FakeHost host_;
  const TestSupport::LogCapture log_{Velmora::LoggingMode::Warning};
  const TestSupport::TemporaryDirectory directory_;
};

TEST_P(InterruptedMigration, IsFinishedByTheNextStartWhereverItWasKilled) {
  const std::size_t writes = CountWritesOfAWholeMigration();
  ASSERT_GT(writes, 40U);
  for (std::size_t before = 0; before < writes; ++before) {
    SCOPED_TRACE("killed before write " + std::to_string(before));
    const Expectation expected = ExpectationFor(before);
    const std::string folder = directory_.PathOf(std::to_string(before));

    EXPECT_EQ(EndOfProcessThat([&] { LeaveOldSettings(*DefaultsOf(*OnDisk(folder))); }), 0);
    EXPECT_EQ(EndOfProcessThat([&] {
                Migrate(OnDisk(folder), before, [] { static_cast<void>(raise(SIGKILL)); });
              }),
              -SIGKILL);
    ExpectOnDisk(folder, expected.interrupted);

    EXPECT_EQ(EndOfProcessThat([&] { Migrate(OnDisk(folder), kNever, nullptr); }), 0);
    ExpectOnDisk(folder, expected.finished);
    EXPECT_EQ(expected.finished.at("Korvo.KorvoMobile_Lifecycle.InstallDate"), Value(kInstallDate));
    EXPECT_EQ(expected.finished.at("the app's own"), Value("stays"));
    EXPECT_FALSE(expected.finished.contains("VRCK1"));
  }
}

INSTANTIATE_TEST_SUITE_P(Defaults, InterruptedMigration,
                         testing::Values(std::string(), std::string("group.storefront")),
                         [](const auto& test) {
                           return test.param.empty() ? "OfTheApplication" : "OfItsGroup";
                         });

}  // namespace
