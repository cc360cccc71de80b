#pragma once

#include <memory>
#include <mutex>
#include <string>

namespace Velmora {

// A text that is found out when it is first asked for, and never again. Safe from any thread;
// callers that come meanwhile wait.
class OnceText {
 public:
  // `find` gives the text. It must not throw and must not ask for this same text.
  template <class Find>
  std::string Get(Find&& find) {
    std::call_once(found_, [&] { text_ = find(); });
    return text_;
  }

 private:
  std::once_flag found_;
  std::string text_;
};

// What every NativeSystemInfoService of the process shares.
struct SystemInfoCaches {
  OnceText operatingSystemName;
  OnceText operatingSystemVersion;
  OnceText runMode;
  OnceText defaultUserAgent;

  // Those of the process; never null. Safe from any thread.
  static std::shared_ptr<SystemInfoCaches> OfProcess();

  // Gives the process empty ones, so that a test can begin as a new process does.
  static void Renew();
};

}  // namespace Velmora
