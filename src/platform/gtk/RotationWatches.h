#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "QEXCore_iOS/Platform/Ui.h"

namespace Platform {

// Who wants to hear of rotations. Watches may outlive it. Lives on the main queue.
class RotationWatches {
 public:
  // As Ui::WatchRotation.
  std::unique_ptr<RotationWatch> Add(std::function<void()> rotated) {
    return std::make_unique<Watch>(all_, std::move(rotated));
  }

  // Tells everybody, also whoever stops watching meanwhile.
  void Tell() const {
    const All told = *all_;
    for (const auto& rotated : told) (*rotated)();
  }

  std::size_t Count() const { return all_->size(); }

 private:
  using All = std::vector<std::shared_ptr<const std::function<void()>>>;

  class Watch final : public RotationWatch {
   public:
    Watch(std::shared_ptr<All> all, std::function<void()> rotated)
        : all_(std::move(all)),
          rotated_(std::make_shared<const std::function<void()>>(std::move(rotated))) {
      all_->push_back(rotated_);
    }
    ~Watch() override { std::erase(*all_, rotated_); }
    Watch(const Watch&) = delete;
    Watch& operator=(const Watch&) = delete;

   private:
    const std::shared_ptr<All> all_;
    const std::shared_ptr<const std::function<void()>> rotated_;
  };

  const std::shared_ptr<All> all_ = std::make_shared<All>();
};

}  // namespace Platform
