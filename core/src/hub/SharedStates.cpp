#include "hub/SharedStates.h"

#include <iterator>
#include <utility>

namespace Velmora {

bool SharedStates::Set(const std::string& owner, Text text, std::int64_t number) {
  if (text->size() > kMaxBytes) return false;
  const std::lock_guard<std::mutex> lock(mutex_);
  Versions& versions = versions_[owner];
  Text& place = versions.texts[number];
  if (place != nullptr) versions.bytes -= place->size();
  versions.bytes += text->size();
  place = std::move(text);
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

bool SharedStates::Clear(const std::string& owner) {
  const std::lock_guard<std::mutex> lock(mutex_);
  return versions_.erase(owner) > 0;
}

SharedStates::Text SharedStates::Get(const std::string& owner,
                                     std::optional<std::int64_t> number) const {
  const std::lock_guard<std::mutex> lock(mutex_);
  const auto found = versions_.find(owner);
  if (found == versions_.end()) return nullptr;
  const auto& texts = found->second.texts;
  const auto after = number.has_value() ? texts.upper_bound(*number) : texts.end();
  if (after != texts.begin()) return std::prev(after)->second;
  return found->second.isIncomplete ? after->second : nullptr;
}

}  // namespace Velmora
