#include "platform/linux/JsonValueBuilder.h"

#include <utility>

namespace Platform {

Value JsonValueBuilder::Take() { return std::exchange(root_, Value()); }

void JsonValueBuilder::Begin(Value container) {
  levels_.push_back({std::move(container), Value()});
}

void JsonValueBuilder::End() {
  Value container = std::move(levels_.back().container);
  levels_.pop_back();
  if (levels_.empty()) {
    root_ = std::move(container);
  } else {
    Add(std::move(container));
  }
}

void JsonValueBuilder::Add(Value value) {
  Level& level = levels_.back();
  if (level.container.IsArray()) {
    level.container.Append(std::move(value));
  } else {
    level.container.Set(std::move(level.key), std::move(value));
  }
}

}  // namespace Platform
