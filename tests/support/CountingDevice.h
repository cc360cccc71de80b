#pragma once

#include <atomic>
#include <string>

#include "QEXCore_iOS/Platform/Device.h"

namespace TestSupport {

// Counts the questions and gives every one another answer: "<what> <how many so far>".
class CountingDevice final : public Platform::Device {
 public:
  int Questions() const { return questions_; }

  std::string SystemName() const override { return Answer("name"); }
  std::string SystemVersion() const override { return Answer("version"); }
  std::string Model() const override { return Answer("model"); }
  std::string HardwareModel() const override { return Answer("hardware"); }

 private:
  std::string Answer(const std::string& what) const {
    return what + " " + std::to_string(++questions_);
  }

  mutable std::atomic<int> questions_{0};
};

}  // namespace TestSupport
