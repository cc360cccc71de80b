#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "QEXCore_iOS/Platform/JsonSerialization.h"

namespace Platform {

// JSON by simdjson (reading) and RapidJSON (writing, and saying what is wrong with a text). Has no
// state: one object serves all threads, each of which keeps a parser of its own.
class LinuxJsonSerialization : public JsonSerialization {
 public:
  // The codes of its errors.
  static constexpr int kReadErrorCode = 1;
  static constexpr int kWriteErrorCode = 2;

  LinuxJsonSerialization();

  Value Parse(std::string_view text, Error* error) const override;
  bool Parse(std::string_view text, JsonVisitor& visitor, Error* error) const override;
  bool IsValidJsonObject(const Value& value) const override;
  std::optional<std::string> Serialize(const Value& value, JsonLayout layout,
                                       Error* error) const override;
  std::optional<std::string> Write(const std::function<void(JsonVisitor&)>& tell, JsonLayout layout,
                                   Error* error) const override;
};

}  // namespace Platform
