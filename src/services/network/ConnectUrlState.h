#pragma once

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>

#include "VelmoraCore/HttpConnectionInterface.h"

namespace Velmora {

// Where a synchronous request waits for its response. Shared by who waits and who delivers, so that
// a response that comes too late still finds it. Safe from any thread.
class ConnectUrlState {
 public:
  void Deliver(const std::shared_ptr<HttpConnectionInterface>& connection);

  // Waits for the delivery, but not beyond `deadline`. What has been delivered by then; an empty
  // pointer when nothing has.
  std::shared_ptr<HttpConnectionInterface> WaitUntil(
      std::chrono::system_clock::time_point deadline);

 private:
  std::mutex mutex_;
  std::condition_variable delivered_;
  bool isDone_ = false;                                  // guarded by mutex_
  std::shared_ptr<HttpConnectionInterface> connection_;  // guarded by mutex_
};

}  // namespace Velmora
