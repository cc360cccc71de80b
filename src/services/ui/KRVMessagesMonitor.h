#pragma once

#include <atomic>

// Knows whether an alert or a full-screen message is on screen. All monitors of the process share
// that knowledge, so that no two messages, from any source, are on screen together. May be used on
// any thread; never throws.
class KRVMessagesMonitor {
 public:
  // A message has come on screen.
  void displayed();

  // The message has left it.
  void dismissed();

  bool isDisplayed() const;

 private:
  static std::atomic<bool> messageDisplayed_;
};
