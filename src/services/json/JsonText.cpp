#include "services/json/JsonText.h"

#include <exception>
#include <string_view>
#include <utility>

#include "QEXCore_iOS/Platform/Host.h"
#include "interop/VariantConversion.h"
#include "services/json/JsonVariantBuilder.h"
#include "services/json/JsonVariantTeller.h"

namespace Velmora {
namespace {

using Platform::JsonLayout;
using Platform::JsonSerialization;

std::shared_ptr<JsonSerialization> PlatformJson() {
  return Platform::Host::Current()->jsonSerialization;
}

std::string_view UpToZero(std::string_view text) { return text.substr(0, text.find('\0')); }

// True when a string of the JSON text may hold a zero byte. It takes the conversions to say what
// becomes of such a string: a key is cut off there on its way to the core, and which of those that
// become the same key wins depends on their order in the platform's value.
bool MayHoldZero(std::string_view text) { return text.find("\\u0000") != std::string_view::npos; }

// Lets `builder` hear the text. False, with the problem, when it cannot be read.
bool Read(const std::string& text, JsonVariantBuilder& builder, std::string& problem) {
  Platform::Error error;
  if (PlatformJson()->Parse(UpToZero(text), builder, &error)) return true;
  problem = error.LocalizedDescription();
  return false;
}

Platform::Value ValueOf(const std::string& text) {
  return PlatformJson()->Parse(UpToZero(text), nullptr);
}

Platform::Value ToPlatform(const VariantMap& map) { return ToNSDictionary(map); }
Platform::Value ToPlatform(const VariantVector& vector) { return ToNSArray(vector); }

// By way of a platform value.
template <class Container>
std::optional<std::string> Convert(const Container& container, std::string& problem) {
  try {
    Platform::Error error;
    auto text = PlatformJson()->Serialize(ToPlatform(container), JsonLayout::Pretty, &error);
    if (!text) problem = error.LocalizedDescription();
    return text;
  } catch (const std::exception& exception) {
    problem = exception.what();
    return std::nullopt;
  }
}

template <class Container>
std::optional<std::string> Write(const Container& container, std::string& problem) {
  bool complete = false;
  const auto tell = [&container, &complete](Platform::JsonVisitor& visitor) {
    complete = JsonVariantTeller(visitor).Tell(container);
  };
  auto text = PlatformJson()->Write(tell, JsonLayout::Pretty, nullptr);
  if (complete && text && !MayHoldZero(*text)) return text;
  return Convert(container, problem);
}

}  // namespace

std::optional<VariantMap> ReadJsonObject(const std::string& text, std::string& problem) {
  JsonVariantBuilder builder;
  if (!Read(text, builder, problem)) return std::nullopt;
  std::optional<VariantMap> map = builder.TakeMap();
  if (!map) {
    problem = "The root is not an object";
    return std::nullopt;
  }
  if (MayHoldZero(text)) return ToVariantMap(ValueOf(text));
  return map;
}

std::optional<VariantVector> ReadJsonArray(const std::string& text, std::string& problem) {
  JsonVariantBuilder builder;
  if (!Read(text, builder, problem)) return std::nullopt;
  std::optional<VariantVector> vector = builder.TakeVector();
  if (!vector) {
    problem = "The root is not an array";
    return std::nullopt;
  }
  if (MayHoldZero(text)) return ToVariantVector(ValueOf(text));
  return vector;
}

std::optional<std::string> WriteJson(const VariantMap& map, std::string& problem) {
  return Write(map, problem);
}

std::optional<std::string> WriteJson(const VariantVector& vector, std::string& problem) {
  return Write(vector, problem);
}

}  // namespace Velmora
