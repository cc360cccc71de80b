#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>
#include <vector>

#include "VelmoraCore/Event.h"

namespace Velmora {

// Functions that wait for the first answer to a request. May be used on any thread; calls none of
// them.
//
// At most `capacity` wait at a time: when one more comes, the one that has waited longest is
// forgotten, with one warning in the life of the object. Nothing else ends the wait for an answer
// that never comes.
class ResponseWaiters {
 public:
  using Callback = std::function<void(const std::shared_ptr<Event>&)>;

  explicit ResponseWaiters(std::size_t capacity);

  // Returns a ticket for Remove.
  std::int64_t Add(const std::string& requestId, Callback callback);

  void Remove(std::int64_t ticket);

  // Takes out those that wait for an answer to this request, in the order in which they came.
  std::vector<Callback> Take(const std::string& requestId);

  void Clear();

  std::size_t Count() const;

 private:
  struct Waiter {
    std::string requestId;
    Callback callback;
  };
  using Waiters = std::map<std::int64_t, Waiter>;

  // Takes one out, for the caller to destroy without the lock.
  Callback Extract(Waiters::iterator waiter);

  const std::size_t capacity_;
  mutable std::mutex mutex_;
  Waiters waiters_;
  std::unordered_multimap<std::string, std::int64_t> tickets_;
  std::int64_t lastTicket_ = 0;
  bool hasWarned_ = false;
};

}  // namespace Velmora
