#include "hub/SharedStates.h"

#include <iterator>
#include <utility>

namespace Velmora {

bool SharedStates::Set(const std::string& owner, const std::string& text, std::int64_t number) {
  if (text.size() > kMaxBytes) return false;
  auto shared = std::make_shared<const std::string>(text);
  const std::lock_guard<std::mutex> lock(mutex_);
  Versions& versions = versions_[owner];
  std::shared_ptr<const std::string>& place = versions.texts[number];
  if (place != nullptr) versions.bytes -= place->size();
  versions.bytes += shared->size();
  place = std::move(shared);
  DropOldest(versions);
  return true;
}

void SharedStates::DropOldest(Versions& versions) {
  while (versions.texts.size() > 1 &&
         (versions.texts.size() > kMaxVersions || versions.bytes > kMaxBytes)) {
    versions.bytes -= versions.texts.begin()->second->size();
    versions.texts.erase(versions.texts.begin());
    versions.isIncomplete = true;
  }
}

void SharedStates::Clear(const std::string& owner) {
  const std::lock_guard<std::mutex> lock(mutex_);
  versions_.erase(owner);
}

std::shared_ptr<std::string> SharedStates::Get(const std::string& owner,
                                               std::optional<std::int64_t> number) const {
  std::shared_ptr<const std::string> text;
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    const auto found = versions_.find(owner);
    if (found == versions_.end()) return nullptr;
    const auto& texts = found->second.texts;
    const auto after = number.has_value() ? texts.upper_bound(*number) : texts.end();
    if (after != texts.begin()) {
      text = std::prev(after)->second;
    } else if (found->second.isIncomplete) {
      text = after->second;
    }
  }
  return text == nullptr ? nullptr : std::make_shared<std::string>(*text);
}

}  // namespace Velmora
