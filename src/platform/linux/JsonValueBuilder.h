#pragma once

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

  void BeginObject() override;
  void EndObject() override;
  void BeginArray() override;
  void EndArray() override;
  void Key(std::string_view key) override;
  void String(std::string_view text) override;
  void Integer(std::int64_t number) override;
  void Double(double number) override;
  void Boolean(bool value) override;
  void Null() override;

 private:
  // A container that has not ended, and the key that waits for its value.
  struct Level {
    Value container;
    Value key;
  };

  void Add(Value value);
  void End();

  std::vector<Level> levels_;
  Value root_;
};

}  // namespace Platform
