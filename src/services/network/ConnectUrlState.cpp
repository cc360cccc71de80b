#include "services/network/ConnectUrlState.h"

namespace Velmora {

void ConnectUrlState::Deliver(const std::shared_ptr<HttpConnectionInterface>& connection) {
  const std::lock_guard lock(mutex_);
  connection_ = connection;
  isDone_ = true;
  delivered_.notify_all();
}

std::shared_ptr<HttpConnectionInterface> ConnectUrlState::WaitUntil(
    std::chrono::system_clock::time_point deadline) {
  std::unique_lock lock(mutex_);
  delivered_.wait_until(lock, deadline, [this] { return isDone_; });
  return connection_;
}

}  // namespace Velmora
