#include "platform/linux/LinuxJsonSerialization.h"

#include <utility>

#include "platform/linux/DeafJsonVisitor.h"
#include "platform/linux/JsonTextReader.h"
#include "platform/linux/JsonTextWriter.h"
#include "platform/linux/JsonValueBuilder.h"
#include "platform/linux/JsonValueTeller.h"

namespace Platform {
namespace {

void Store(Error* error, int code, std::string description) {
  if (error == nullptr) return;
  *error = Error(JsonSerialization::kErrorDomain, code, std::move(description));
}

}  // namespace

LinuxJsonSerialization::LinuxJsonSerialization() { PrepareJsonReader(); }

Value LinuxJsonSerialization::Parse(std::string_view text, Error* error) const {
  JsonValueBuilder builder;
  if (!Parse(text, builder, error)) return {};
  return builder.Take();
}

bool LinuxJsonSerialization::Parse(std::string_view text, JsonVisitor& visitor,
                                   Error* error) const {
  std::optional<std::string> fault = ReadJsonText(text, visitor);
  if (!fault) return true;
  Store(error, kReadErrorCode, std::move(*fault));
  return false;
}

bool LinuxJsonSerialization::IsValidJsonObject(const Value& value) const {
  DeafJsonVisitor visitor;
  return TellJsonValue(value, visitor) == nullptr;
}

std::optional<std::string> LinuxJsonSerialization::Serialize(const Value& value, JsonLayout layout,
                                                             Error* error) const {
  const char* problem = nullptr;
  const auto tell = [&value, &problem](JsonVisitor& visitor) {
    problem = TellJsonValue(value, visitor);
  };
  std::string writerProblem;
  std::optional<std::string> text = WriteJsonText(tell, layout, writerProblem);
  if (problem == nullptr && text) return text;
  Store(error, kWriteErrorCode, problem != nullptr ? problem : std::move(writerProblem));
  return std::nullopt;
}

std::optional<std::string> LinuxJsonSerialization::Write(
    const std::function<void(JsonVisitor&)>& tell, JsonLayout layout, Error* error) const {
  std::string problem;
  std::optional<std::string> text = WriteJsonText(tell, layout, problem);
  if (!text) Store(error, kWriteErrorCode, std::move(problem));
  return text;
}

}  // namespace Platform
