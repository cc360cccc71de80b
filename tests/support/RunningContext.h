#pragma once

#include <atomic>
#include <thread>

#include <glib.h>

#include "platform/linux/GlibPointers.h"

namespace TestSupport {

// A GLib context that a thread of its own runs from construction, or from Start(), to destruction.
class RunningContext {
 public:
  enum class Begin { Now, Later };

  explicit RunningContext(Begin begin = Begin::Now) {
    if (begin == Begin::Now) Start();
  }
  ~RunningContext() {
    stop_ = true;
    g_main_context_wakeup(context_.get());
    if (thread_.joinable()) thread_.join();
  }
  RunningContext(const RunningContext&) = delete;
  RunningContext& operator=(const RunningContext&) = delete;

  void Start() {
    thread_ = std::thread([this] {
      while (!stop_) g_main_context_iteration(context_.get(), TRUE);
    });
  }

  GMainContext* Get() const { return context_.get(); }
  std::thread::id ThreadId() const { return thread_.get_id(); }

 private:
  const Platform::GMainContextPointer context_{g_main_context_new()};
  std::atomic<bool> stop_{false};
  std::thread thread_;
};

}  // namespace TestSupport
