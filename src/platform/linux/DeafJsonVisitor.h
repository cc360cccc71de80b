#pragma once

#include <cstdint>
#include <string_view>

#include "QEXCore_iOS/Platform/JsonSerialization.h"

namespace Platform {

// Hears everything and keeps nothing.
class DeafJsonVisitor final : public JsonVisitor {
 public:
  void BeginObject() override {}
  void EndObject() override {}
  void BeginArray() override {}
  void EndArray() override {}
  void Key(std::string_view) override {}
  void String(std::string_view) override {}
  void Integer(std::int64_t) override {}
  void Double(double) override {}
  void Boolean(bool) override {}
  void Null() override {}
};

}  // namespace Platform
