#pragma once

#include <chrono>
#include <functional>
#include <memory>

#include <glib.h>

namespace Platform {

// Calls `tick` on the main queue's thread every `interval` until it gives false or this goes. Lives
// on the main queue.
class GlibTimer {
 public:
  GlibTimer() = default;
  GlibTimer(std::chrono::milliseconds interval, std::function<bool()> tick);

 private:
  struct Destroy {
    void operator()(GSource* source) const {
      g_source_destroy(source);
      g_source_unref(source);
    }
  };

  std::unique_ptr<GSource, Destroy> source_;
};

}  // namespace Platform
