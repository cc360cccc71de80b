#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "QEXCore_iOS/Platform/Value.h"

// Text between the platform, where a string may be absent, and the core, where it may be empty.
// Every function may be called on any thread.
namespace Velmora {

// The text up to its first zero byte; empty when the string is absent.
std::string ToCppString(const std::optional<std::string>& text);

// The same of a platform value; empty when the value is no string.
std::string ToCppString(const Platform::Value& value);

// The bytes up to the first zero byte, read as UTF-8. Absent when there are none, so an empty
// string never crosses to the platform, and when they are not well-formed.
std::optional<std::string> ToNSString(const std::string& text);

// What ToNSString would give, as a view into `text`.
std::optional<std::string_view> ToNSStringView(std::string_view text);

// The same again as a value: a string or absent.
Platform::Value ToNSStringValue(std::string_view text);

}  // namespace Velmora
