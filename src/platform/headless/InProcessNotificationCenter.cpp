#include "platform/headless/InProcessNotificationCenter.h"

#include <utility>
#include <vector>

namespace Platform {

struct InProcessNotificationCenter::Observers {
  using Key = std::pair<std::string, std::uint64_t>;  // name, number in order of adding

  std::mutex mutex;
  std::uint64_t lastNumber = 0;
  std::map<Key, std::shared_ptr<const Observer>> byKey;
};

class InProcessNotificationCenter::Observation final : public NotificationObservation {
 public:
  Observation(std::shared_ptr<Observers> observers, Observers::Key key)
      : observers_(std::move(observers)), key_(std::move(key)) {}

  ~Observation() override {
    // What the observer holds goes without the lock.
    std::shared_ptr<const Observer> observer;
    const std::lock_guard lock(observers_->mutex);
    const auto found = observers_->byKey.find(key_);
    if (found == observers_->byKey.end()) return;
    observer = std::move(found->second);
    observers_->byKey.erase(found);
  }

 private:
  const std::shared_ptr<Observers> observers_;
  const Observers::Key key_;
};

InProcessNotificationCenter::InProcessNotificationCenter()
    : observers_(std::make_shared<Observers>()) {}

InProcessNotificationCenter::~InProcessNotificationCenter() = default;

std::unique_ptr<NotificationObservation> InProcessNotificationCenter::AddObserver(
    const std::string& name, Observer observer) {
  auto shared = std::make_shared<const Observer>(std::move(observer));
  const std::lock_guard lock(observers_->mutex);
  Observers::Key key(name, ++observers_->lastNumber);
  auto observation = std::make_unique<Observation>(observers_, key);
  observers_->byKey.emplace(std::move(key), std::move(shared));
  return observation;
}

void InProcessNotificationCenter::Post(const Notification& notification) {
  std::vector<std::shared_ptr<const Observer>> addressed;
  {
    const std::lock_guard lock(observers_->mutex);
    auto next = observers_->byKey.lower_bound({notification.name, 0});
    for (; next != observers_->byKey.end() && next->first.first == notification.name; ++next) {
      addressed.push_back(next->second);
    }
  }
  for (const auto& observer : addressed) (*observer)(notification);
}

}  // namespace Platform
