#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "QEXCore_iOS/Platform/JsonSerialization.h"
#include "QEXCore_iOS/Platform/Value.h"

namespace Platform {

// Makes the value of what it hears.
class JsonValueBuilder : public JsonVisitor {
 public:
  // The finished value; absent before the end was heard.
  Value Take();

  void BeginObject() override { Begin(Value::Dictionary()); }
  void EndObject() override { End(); }
  void BeginArray() override { Begin(Value::Array()); }
  void EndArray() override { End(); }
  void Key(std::string_view key) override { levels_.back().key = Value(key); }
  void String(std::string_view text) override { Add(Value(text)); }
  void Integer(std::int64_t number) override { Add(Value(number)); }
  void Double(double number) override { Add(Value(number)); }
  void Boolean(bool value) override { Add(Value(value)); }
  void Null() override { Add(Value::Null()); }

 private:
  // A container that has not ended, and the key that waits for its value.
  struct Level {
    Value container;
    Value key;
  };

  void Begin(Value container);
  void End();
  void Add(Value value);

  std::vector<Level> levels_;
  Value root_;
};

}  // namespace Platform
