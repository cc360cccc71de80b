#pragma once

#include <condition_variable>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "QEXCore_iOS/Platform/UrlSession.h"
#include "platform/linux/JoiningThread.h"

namespace TestSupport {

// A URL session without a network: the test is the server. Requests that could not be sent are
// refused as the real one refuses them. Safe from any thread.
class FakeUrlSession final : public Platform::UrlSession {
 public:
  // What comes of a request. Called on the session's thread.
  struct Answer {
    std::shared_ptr<const Platform::UrlResponse> response;  // null: the error tells
    Platform::Error error;
    bool neverComes = false;  // until it is cancelled
  };
  using Server = std::function<Answer(const Platform::UrlRequest&)>;

  // Nobody answers, unless a test says who does: every request fails with
  // UrlFailure::NotConnected.
  FakeUrlSession();
  ~FakeUrlSession() override;

  void SetServer(Server server);

  // Every request that was started, in order.
  std::vector<Platform::UrlRequest> Requests() const;

  // Short ways to an answer.
  static Answer Respond(std::int32_t status, const std::string& body = {},
                        const std::map<std::string, std::string>& headers = {});
  static Answer Fail(Platform::UrlFailure failure);
  static Answer Never();

  TaskId Start(Platform::UrlRequest request, Completion completion) override;
  void Cancel(TaskId task) override;

 private:
  struct State;

  void StartThread();
  static void Run(const std::shared_ptr<State>& state);

  const std::shared_ptr<State> state_;
  Platform::JoiningThread thread_;
};

}  // namespace TestSupport
