#include "hub/ModuleRegistry.h"

#include <utility>

namespace Velmora {

ModuleRegistry::ModuleRegistry() : active_(std::make_shared<const Hosts>()) {}

bool ModuleRegistry::Reserve(const std::string& name) {
  const std::lock_guard<std::mutex> lock(mutex_);
  return slots_.emplace(name, Slot{true, nullptr, nullptr}).second;
}

ModuleRegistry::Addition ModuleRegistry::Add(const HostPointer& host) {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (isClosed_) return Addition::Closed;
  Slot& slot = slots_[host->Name()];
  if (slot.isBuiltIn || slot.active != nullptr) return Addition::Taken;
  slot.active = host;
  auto active = std::make_shared<Hosts>(*active_);
  active->push_back(host);
  active_ = std::move(active);
  return slot.leaving == nullptr ? Addition::MayStart : Addition::MustWait;
}

void ModuleRegistry::Close() {
  const std::lock_guard<std::mutex> lock(mutex_);
  isClosed_ = true;
}

void ModuleRegistry::Discard(const HostPointer& host) {
  const std::lock_guard<std::mutex> lock(mutex_);
  const auto slot = slots_.find(host->Name());
  if (slot != slots_.end() && slot->second.active == host) Deactivate(slot->second);
}

bool ModuleRegistry::Remove(const HostPointer& host) {
  const std::lock_guard<std::mutex> lock(mutex_);
  const auto slot = slots_.find(host->Name());
  if (slot == slots_.end() || slot->second.active != host) return false;
  Deactivate(slot->second);
  if (slot->second.leaving == nullptr) slot->second.leaving = host;
  return true;
}

void ModuleRegistry::Deactivate(Slot& slot) {
  auto active = std::make_shared<Hosts>(*active_);
  std::erase(*active, slot.active);
  active_ = std::move(active);
  slot.active = nullptr;
}

ModuleRegistry::HostPointer ModuleRegistry::OnEnded(const HostPointer& host) {
  const std::lock_guard<std::mutex> lock(mutex_);
  ended_.push_back(host);
  const auto slot = slots_.find(host->Name());
  if (slot == slots_.end() || slot->second.leaving != host) return nullptr;
  slot->second.leaving = nullptr;
  if (slot->second.active == nullptr) {
    slots_.erase(slot);
    return nullptr;
  }
  return slot->second.active;
}

std::shared_ptr<const ModuleRegistry::Hosts> ModuleRegistry::Active() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return active_;
}

ModuleRegistry::Hosts ModuleRegistry::TakeEnded() {
  const std::lock_guard<std::mutex> lock(mutex_);
  return std::exchange(ended_, {});
}

ModuleRegistry::Hosts ModuleRegistry::All() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  Hosts all = ended_;
  for (const auto& [name, slot] : slots_) {
    if (slot.active != nullptr) all.push_back(slot.active);
    if (slot.leaving != nullptr) all.push_back(slot.leaving);
  }
  return all;
}

}  // namespace Velmora
