// An app that is killed again and again, in the middle of tracking and sending, loses no hit that
// it was told is kept, and damages nothing.

#include <algorithm>
#include <csignal>
#include <fstream>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "integration/network/ChildProgram.h"
#include "services/json/NativeJsonUtilityService.h"
#include "support/FakeHost.h"
#include "support/Guarded.h"
#include "support/ScopedEnvironment.h"
#include "support/TemporaryDirectory.h"
#include "support/WaitUntil.h"
#include "support/tls/TrustedServer.h"

namespace {

using TestSupport::ScopedEnvironment;
using TestSupport::WaitUntil;
using TestSupport::WireConnection;
using TestSupport::WireRequest;

struct Posted {
  std::string id;
  std::string action;
};

class KilledAppTest : public testing::Test {
 protected:
  std::unique_ptr<ChildProgram> Start(std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), WORKER_PROGRAM);
    return std::make_unique<ChildProgram>(std::move(arguments), "");
  }

  // Takes most hits; every fortieth answer gets lost, every fifteenth is a refusal for now.
  void Collect(const WireRequest& request, WireConnection& connection) {
    const auto hit = json_->CreateJsonObject(request.body);
    const std::size_t count = posted_.With([&](auto& all) {
      all.push_back({hit->GetString("hitId"), hit->GetString("action")});
      return all.size();
    });
    if (count % 40 == 0 && isUnreliable_) {
      connection.Reset();
    } else {
      connection.Respond(count % 15 == 0 && isUnreliable_ ? 503 : 200);
    }
  }

  std::vector<std::string> Acknowledged() const {
    std::vector<std::string> ids;
    std::ifstream file(acknowledged_);
    for (std::string id; std::getline(file, id);) ids.push_back(id);
    return ids;
  }
  std::size_t CountPosted() const {
    return posted_.With([](const auto& all) { return all.size(); });
  }

  const TestSupport::TemporaryDirectory home_;
  const std::string acknowledged_ = home_.PathOf("acknowledged");
  const ScopedEnvironment trust_{"SSL_CERT_FILE", TestSupport::TrustedServer::AuthorityFile()};
  const ScopedEnvironment data_{"XDG_DATA_HOME", home_.PathOf("data")};
  const ScopedEnvironment cache_{"XDG_CACHE_HOME", home_.PathOf("cache")};
  const TestSupport::FakeHost host_;
  const std::shared_ptr<Velmora::JsonUtilityServiceInterface> json_ =
      Velmora::CreateNativeJsonUtilityService();
  TestSupport::Guarded<std::vector<Posted>> posted_;
  std::atomic<bool> isUnreliable_{true};
  const TestSupport::TrustedServer server_{
      [this](const WireRequest& request, WireConnection& connection) {
        Collect(request, connection);
      }};
};

TEST_F(KilledAppTest, LosesNoHitThatWasAcknowledgedAndSendsEachUnderOneId) {
  constexpr std::size_t kRounds = 8;
  for (std::size_t round = 0; round < kRounds; ++round) {
    const std::size_t before = Acknowledged().size();
    const std::size_t postedBefore = CountPosted();
    const auto app = Start({"track", server_.Url("/"), acknowledged_, std::to_string(round)});
    // Early in some rounds, in the middle of sending in others.
    ASSERT_TRUE(WaitUntil([&] { return Acknowledged().size() > before + 4 * round; }));
    if (round % 3 == 0) {
      ASSERT_TRUE(WaitUntil([&] { return CountPosted() > postedBefore; }));
    }
    app->Signal(SIGKILL);
    EXPECT_EQ(app->Wait(), -SIGKILL);
  }
  isUnreliable_ = false;
  EXPECT_EQ(Start({"send", server_.Url("/")})->Wait(), 0);

  std::map<std::string, std::string> actions;  // by id
  std::vector<std::string> firsts;
  for (const Posted& hit : posted_.Get()) {
    const bool isNew = actions.emplace(hit.id, hit.action).second;
    EXPECT_EQ(actions[hit.id], hit.action);
    if (isNew) firsts.push_back(hit.action);
  }
  const std::vector<std::string> acknowledged = Acknowledged();
  for (const std::string& id : acknowledged) EXPECT_TRUE(actions.contains(id)) << id << " is lost";
  EXPECT_EQ(std::set<std::string>(firsts.begin(), firsts.end()).size(), firsts.size())
      << "an action went out under two ids";
  EXPECT_GT(acknowledged.size(), 4 * (kRounds - 1));

  // In the order in which they were tracked.
  std::vector<std::pair<int, int>> order;
  for (const std::string& action : firsts) {
    const std::size_t dash = action.find('-');
    order.emplace_back(std::stoi(action.substr(0, dash)), std::stoi(action.substr(dash + 1)));
  }
  EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
}

}  // namespace
