#include "platform/linux/JsonValueBuilder.h"

#include <utility>

namespace Platform {

Value JsonValueBuilder::Take() { return std::exchange(root_, Value()); }

void JsonValueBuilder::BeginObject() { levels_.push_back({Value::Dictionary(), Value()}); }

void JsonValueBuilder::EndObject() { End(); }

void JsonValueBuilder::BeginArray() { levels_.push_back({Value::Array(), Value()}); }

void JsonValueBuilder::EndArray() { End(); }

void JsonValueBuilder::Key(std::string_view key) { levels_.back().key = Value(key); }

void JsonValueBuilder::String(std::string_view text) { Add(Value(text)); }

void JsonValueBuilder::Integer(std::int64_t number) { Add(Value(number)); }

void JsonValueBuilder::Double(double number) { Add(Value(number)); }

void JsonValueBuilder::Boolean(bool value) { Add(Value(value)); }

void JsonValueBuilder::Null() { Add(Value::Null()); }

void JsonValueBuilder::Add(Value value) {
  Level& level = levels_.back();
  if (level.container.IsArray()) {
    level.container.Append(std::move(value));
  } else {
    level.container.Set(std::move(level.key), std::move(value));
  }
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

}  // namespace Platform
