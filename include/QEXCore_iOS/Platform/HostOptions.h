#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "QEXCore_iOS/Platform/Value.h"

namespace Platform {

// What can be chosen of the default host's parts.
struct HostOptions {
  // A PEM file of certificate authorities to trust beside the system's; empty for none. A file that
  // cannot be read adds none, and the errors of refused certificates say so.
  std::string extraTrustFile;

  // The largest body, decoded, that a response may have, in bytes. Beyond it the request fails.
  std::uint64_t largestResponseBody = std::uint64_t{512} << 20;

  // Called on the main queue when the user clicks a notification, with the notification's user
  // information. Empty: the program's desktop entry is opened.
  std::function<void(const Value& userInfo)> notificationOpened;

  // Which thread does the work of the main queue.
  enum class MainQueueThread {
    LoopOrOwn,  // the one that runs GLib's default context; without such a loop, one of its own
    LoopOnly,   // that one and no other: work waits until the context is run
  };
  MainQueueThread mainQueueThread = MainQueueThread::LoopOrOwn;
};

}  // namespace Platform
