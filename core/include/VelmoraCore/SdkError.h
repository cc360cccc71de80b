#pragma once

#include <exception>
#include <memory>
#include <string>

#include "VelmoraCore/Export.h"

namespace Velmora {

// Where an error was raised.
class VELMORA_CORE_API DebugInfo {
 public:
  // `sourceLocation` has the form "src/services/<area>/<Class>"; `line` counts from 1. The calling
  // thread's stack is noted as addresses, which are turned into text only when asked for.
  DebugInfo(std::string sourceLocation, int line);

  const std::string& GetSourceLocation() const;
  int GetLine() const;

  // One line per frame, the innermost first; empty where the system keeps no stack.
  std::string GetStackTrace() const;

 private:
  struct Frames;
  std::string sourceLocation_;
  int line_;
  std::shared_ptr<const Frames> frames_;
};

// The error of the core and of every service: a code from a fixed list and a message for people.
// Thrown, or handed to a std::function<void(SdkError&)>. Copies are cheap and never throw.
class VELMORA_CORE_API SdkError : public std::exception {
 public:
  SdkError(std::string code, std::string message, DebugInfo debugInfo);
  ~SdkError() override;

  const std::string& GetCode() const noexcept;
  const std::string& GetMessage() const noexcept;
  const DebugInfo& GetDebugInfo() const noexcept;

  // "<code>: <message>".
  const char* what() const noexcept override;

 private:
  struct Content;
  std::shared_ptr<const Content> content_;
};

}  // namespace Velmora
