#pragma once

// What the pieces of docs/porting.md take from a port's author.

#include <string_view>

#include <QEXCore_iOS/Platform/SystemLog.h>

class JournalLog final : public Platform::SystemLog {
 public:
  void Write(std::string_view line) override;
};
