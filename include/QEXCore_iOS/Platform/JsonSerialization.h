#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "QEXCore_iOS/Platform/Error.h"
#include "QEXCore_iOS/Platform/Export.h"
#include "QEXCore_iOS/Platform/Value.h"

namespace Platform {

// Hears the parts of a JSON text in their order. Containers nest; a member's key comes right before
// its value. Views are good only during the call. An exception that leaves an operation ends the
// reading and reaches its caller.
class QEXCORE_API JsonVisitor {
 public:
  virtual ~JsonVisitor();

  virtual void BeginObject() = 0;
  virtual void EndObject() = 0;
  virtual void BeginArray() = 0;
  virtual void EndArray() = 0;
  virtual void Key(std::string_view key) = 0;
  virtual void String(std::string_view text) = 0;
  virtual void Integer(std::int64_t number) = 0;
  virtual void Double(double number) = 0;
  virtual void Boolean(bool value) = 0;
  virtual void Null() = 0;
};

enum class JsonLayout { Compact, Pretty };

// Reads and writes JSON (RFC 8259). Safe from any thread.
//
// Texts are strict UTF-8 and their root is an object or an array. Integers that fit 64 signed bits
// become SInt64 numbers, all other numbers Float64; of members with one key the last wins. Nesting
// deeper than kMaximumDepth is an error, both ways.
//
// Errors have the domain kErrorDomain and a description with line and column (counted from 1,
// in bytes) where the text is at fault.
class QEXCORE_API JsonSerialization {
 public:
  static constexpr int kMaximumDepth = 1024;
  static constexpr const char* kErrorDomain = "platform.json";

  virtual ~JsonSerialization();

  // The value of the text; absent on failure, with `error` written where it is not null.
  virtual Value Parse(std::string_view text, Error* error) const = 0;

  // Feeds the text to `visitor`. False on failure, with `error` written where it is not null; the
  // visitor may then have heard nothing or a part. The same members reach it as Parse would keep,
  // except that a repeated key is heard each time.
  virtual bool Parse(std::string_view text, JsonVisitor& visitor, Error* error) const = 0;

  // True when `value` can be written: a dictionary or array of strings, numbers other than
  // infinities and not-a-number, booleans, null markers, and such containers; keys are strings.
  virtual bool IsValidJsonObject(const Value& value) const = 0;

  // The JSON text of a dictionary or array. Nothing on failure (a value that cannot be written, a
  // string that is not UTF-8), with `error` written where it is not null.
  virtual std::optional<std::string> Serialize(const Value& value, JsonLayout layout,
                                               Error* error) const = 0;

  // The JSON text of the one dictionary or array that `tell` describes to the visitor it is given,
  // in the order in which it does so. Fails as Serialize does, and when the parts do not nest. What
  // `tell` throws passes through. A member that is told twice is written twice.
  virtual std::optional<std::string> Write(const std::function<void(JsonVisitor&)>& tell,
                                           JsonLayout layout, Error* error) const = 0;
};

}  // namespace Platform
