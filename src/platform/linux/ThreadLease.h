#pragma once

#include <memory>
#include <utility>

namespace Platform {

// Lends the calling thread a T that it keeps between calls, so that its memory is used again. Who
// asks for another while it is lent gets a new one. What is not T::IsWorthKeeping() at the end of
// the lease is not kept.
template <class T>
class ThreadLease {
 public:
  ThreadLease() : lent_(std::move(Kept())) {
    if (!lent_) lent_ = std::make_unique<T>();
  }
  ~ThreadLease() {
    if (lent_->IsWorthKeeping()) Kept() = std::move(lent_);
  }
  ThreadLease(const ThreadLease&) = delete;
  ThreadLease& operator=(const ThreadLease&) = delete;

  T& operator*() const { return *lent_; }
  T* operator->() const { return lent_.get(); }

 private:
  static std::unique_ptr<T>& Kept() {
    thread_local std::unique_ptr<T> kept;
    return kept;
  }

  std::unique_ptr<T> lent_;
};

}  // namespace Platform
