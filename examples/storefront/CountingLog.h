#pragma once

#include <atomic>
#include <memory>
#include <string_view>
#include <utility>

#include <QEXCore_iOS/Platform/SystemLog.h>

namespace Storefront {

// The device's log, which counts what is written to it: an app may replace any part of the device.
class CountingLog final : public Platform::SystemLog {
 public:
  explicit CountingLog(std::shared_ptr<Platform::SystemLog> log) : log_(std::move(log)) {}

  void Write(std::string_view line) override {
    ++count_;
    log_->Write(line);
  }
  int Count() const { return count_; }

 private:
  const std::shared_ptr<Platform::SystemLog> log_;
  std::atomic<int> count_{0};
};

}  // namespace Storefront
