#pragma once

#include "QEXCore_iOS/Platform/Application.h"

namespace Platform {

// An application without windows, which is always active and posts no notices of its life. URLs are
// opened by the program that the desktop has for their scheme.
class GioApplication final : public Application {
 public:
  ApplicationState State() const override { return ApplicationState::Active; }
  std::shared_ptr<Window> KeyWindow() const override { return nullptr; }
  std::vector<std::shared_ptr<Window>> Windows() const override { return {}; }
  bool OpenUrl(const std::string& url) override;
};

}  // namespace Platform
