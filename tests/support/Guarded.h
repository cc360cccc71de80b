#pragma once

#include <mutex>
#include <utility>

namespace TestSupport {

// A value that any thread may read, set or change.
template <class T>
class Guarded {
 public:
  Guarded() = default;
  explicit Guarded(T value) : value_(std::move(value)) {}

  T Get() const {
    const std::lock_guard lock(mutex_);
    return value_;
  }

  void Set(T value) {
    const std::lock_guard lock(mutex_);
    value_ = std::move(value);
  }

  // Sets a new value and gives the one before.
  T Exchange(T value) {
    const std::lock_guard lock(mutex_);
    return std::exchange(value_, std::move(value));
  }

  // Calls `change(value)` while no other thread can see the value, and gives what it returns.
  template <class Change>
  auto With(Change&& change) {
    const std::lock_guard lock(mutex_);
    return std::forward<Change>(change)(value_);
  }
  template <class Look>
  auto With(Look&& look) const {
    const std::lock_guard lock(mutex_);
    return std::forward<Look>(look)(value_);
  }

 private:
  mutable std::mutex mutex_;
  T value_{};
};

}  // namespace TestSupport
