#include "interop/StringConversion.h"

#include "QEXCore_iOS/Platform/Utf8.h"

namespace Velmora {
namespace {

std::string_view UpToZero(std::string_view text) { return text.substr(0, text.find('\0')); }

}  // namespace

std::string ToCppString(const std::optional<std::string>& text) {
  return text ? std::string(UpToZero(*text)) : std::string();
}

std::string ToCppString(const Platform::Value& value) {
  return std::string(UpToZero(value.AsStringView()));
}

std::optional<std::string> ToNSString(const std::string& text) {
  const auto view = ToNSStringView(text);
  if (!view) return std::nullopt;
  return std::string(*view);
}

std::optional<std::string_view> ToNSStringView(std::string_view text) {
  const std::string_view view = UpToZero(text);
  if (view.empty() || !Platform::IsValidUtf8(view)) return std::nullopt;
  return view;
}

Platform::Value ToNSStringValue(std::string_view text) {
  const auto view = ToNSStringView(text);
  return view ? Platform::Value(*view) : Platform::Value();
}

}  // namespace Velmora
