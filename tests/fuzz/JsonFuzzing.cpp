#include "fuzz/JsonFuzzing.h"

#include <memory>
#include <optional>
#include <vector>

#include "QEXCore_iOS/Platform/Host.h"
#include "VelmoraCore/SdkError.h"
#include "interop/VariantConversion.h"
#include "platform/linux/DeafJsonVisitor.h"
#include "services/json/JsonText.h"
#include "services/json/NativeJsonArray.h"
#include "services/json/NativeJsonObject.h"
#include "services/json/NativeJsonUtilityService.h"

namespace JsonFuzzing {
namespace {

using Platform::Error;
using Platform::JsonLayout;
using Platform::JsonSerialization;
using Platform::Value;
using namespace Velmora;

constexpr const char* kErrorCode = "json.serialization_error";

// The object or array of the text; empty when it is refused, and then `problem` tells when the
// error is not the one that is promised.
template <class Container>
std::shared_ptr<Container> Make(const std::string& text, std::string& problem) {
  try {
    return std::make_shared<Container>(text);
  } catch (const SdkError& error) {
    const std::string start = "Failed to create json object for string: " + text + " error: ";
    if (error.GetCode() != kErrorCode) problem = "reading failed with " + error.GetCode();
    if (!error.GetMessage().starts_with(start) || error.GetMessage() == start) {
      problem = "the message of the error is " + error.GetMessage();
    }
    return nullptr;
  }
}

// Nothing when it cannot be printed.
template <class Container>
std::optional<std::string> Print(const Container& container, std::string& problem) {
  try {
    return container.ToString();
  } catch (const SdkError& error) {
    if (error.GetCode() != kErrorCode) problem = "printing failed with " + error.GetCode();
    return std::nullopt;
  }
}

// Every getter at one place: exactly the one of its type answers.
template <class Container, class Place>
bool GettersAgree(const Container& container, const Place& place) {
  const JsonType type = container.GetType(place);
  const bool isNumber = type == JsonType::Number;
  const bool numberAnswers = container.OptDouble(place, 1.0) == container.OptDouble(place, 2.0);
  const bool stringAnswers = container.OptString(place, "1") == container.OptString(place, "2");
  const bool booleanAnswers =
      container.OptBoolean(place, true) == container.OptBoolean(place, false);
  return numberAnswers == isNumber && stringAnswers == (type == JsonType::String) &&
         booleanAnswers == (type == JsonType::Boolean) &&
         (container.OptJsonObject(place) != nullptr) == (type == JsonType::Object) &&
         (container.OptJsonArray(place) != nullptr) == (type == JsonType::Array);
}

template <class Container>
std::string CheckPrinting(const Container& container) {
  std::string problem;
  const auto printed = Print(container, problem);
  if (!printed) return problem;
  const auto again = Make<Container>(*printed, problem);
  if (!again) return "what was printed cannot be read: " + *printed;
  const auto printedAgain = Print(*again, problem);
  if (printedAgain != printed) return "what was printed prints otherwise: " + *printed;
  return {};
}

// The text of a value reads back as the value.
std::string CheckWriting(const JsonSerialization& json, const Value& value) {
  for (const JsonLayout layout : {JsonLayout::Compact, JsonLayout::Pretty}) {
    Error error;
    const auto text = json.Serialize(value, layout, &error);
    if (!text) return "a value that was read cannot be written: " + error.LocalizedDescription();
    if (!json.Parse(*text, &error).Equals(value)) return "reads back otherwise: " + *text;
  }
  return json.IsValidJsonObject(value) ? "" : "a value that was read is called invalid";
}

std::string CheckVariants(const std::string& text, const Value& value) {
  std::string problem;
  const auto map = ReadJsonObject(text, problem);
  const auto vector = ReadJsonArray(text, problem);
  if (map.has_value() != value.IsDictionary()) return "an object, but not by way of a value";
  if (vector.has_value() != value.IsArray()) return "an array, but not by way of a value";
  if (map && !Variant::AreEqual(Variant::FromVariantMap(*map), PlatformToVariant(value))) {
    return "an object that differs by way of a value";
  }
  if (vector && !Variant::AreEqual(Variant::FromVariantVector(*vector), PlatformToVariant(value))) {
    return "an array that differs by way of a value";
  }
  return {};
}

}  // namespace

std::string CheckObject(std::string_view text) {
  std::string problem;
  const auto object = Make<NativeJsonObject>(std::string(text), problem);
  if (!object) return problem;
  std::vector<std::string> keys;
  object->Keys(keys);
  if (keys.size() != object->Length()) return "as many keys as members";
  for (const std::string& key : keys) {
    if (!object->Contains(key) || !GettersAgree(*object, key)) return "getters for " + key;
  }
  std::string unprintable;
  if (Print(*object, unprintable)) {
    const auto flat = CreateNativeJsonUtilityService()->MapFromJsonObject(object);
    if (flat.size() != object->Length()) return "as many flat texts as members";
  }
  return CheckPrinting(*object);
}

std::string CheckArray(std::string_view text) {
  std::string problem;
  const auto array = Make<NativeJsonArray>(std::string(text), problem);
  if (!array) return problem;
  for (std::uint32_t i = 0; i < array->Length(); ++i) {
    if (!GettersAgree(*array, i)) return "getters for " + std::to_string(i);
  }
  return CheckPrinting(*array);
}

std::string CheckPaths(std::string_view text) {
  const auto json = Platform::Host::Current()->jsonSerialization;
  Error valueError;
  const Value value = json->Parse(text, &valueError);
  Error visitorError;
  Platform::DeafJsonVisitor visitor;
  if (json->Parse(text, visitor, &visitorError) == value.IsAbsent()) return "only one way reads it";
  if (valueError != visitorError) return "the two ways tell different errors";
  if (value.IsAbsent() == valueError.LocalizedDescription().empty()) return "an error, or none";
  if (!value.IsAbsent()) {
    if (std::string problem = CheckWriting(*json, value); !problem.empty()) return problem;
  }
  // The services read up to the first zero byte.
  return text.find('\0') == std::string_view::npos ? CheckVariants(std::string(text), value) : "";
}

}  // namespace JsonFuzzing
