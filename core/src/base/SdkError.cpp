#include "VelmoraCore/SdkError.h"

#include <utility>

#include "base/StackFrames.h"

namespace Velmora {

struct DebugInfo::Frames {
  StackFrames stack;
};

DebugInfo::DebugInfo(std::string sourceLocation, int line)
    : sourceLocation_(std::move(sourceLocation)),
      line_(line),
      frames_(std::make_shared<const Frames>()) {}

const std::string& DebugInfo::GetSourceLocation() const { return sourceLocation_; }

int DebugInfo::GetLine() const { return line_; }

std::string DebugInfo::GetStackTrace() const { return frames_->stack.ToText(); }

struct SdkError::Content {
  std::string code;
  std::string message;
  std::string description;
  DebugInfo debugInfo;
};

SdkError::SdkError(std::string code, std::string message, DebugInfo debugInfo) {
  std::string description = code + ": " + message;
  content_ = std::make_shared<const Content>(
      Content{std::move(code), std::move(message), std::move(description), std::move(debugInfo)});
}

SdkError::~SdkError() = default;

const std::string& SdkError::GetCode() const noexcept { return content_->code; }

const std::string& SdkError::GetMessage() const noexcept { return content_->message; }

const DebugInfo& SdkError::GetDebugInfo() const noexcept { return content_->debugInfo; }

const char* SdkError::what() const noexcept { return content_->description.c_str(); }

}  // namespace Velmora
