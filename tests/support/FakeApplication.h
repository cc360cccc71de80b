#pragma once

#include <memory>
#include <string>
#include <vector>

#include "QEXCore_iOS/Platform/Application.h"
#include "support/FakeWindow.h"
#include "support/Guarded.h"

namespace TestSupport {

// An application with one window, which is the key window, until a test says otherwise.
class FakeApplication final : public Platform::Application {
 public:
  std::shared_ptr<FakeWindow> window = std::make_shared<FakeWindow>();
  std::shared_ptr<FakeWindow> keyWindow = window;
  std::vector<std::shared_ptr<Platform::Window>> windows{window};

  void HaveNoWindow();
  void SetState(Platform::ApplicationState state) { state_.Set(state); }

  // False: nothing opens URLs.
  void SetOpensUrls(bool opens) { opensUrls_.Set(opens); }
  std::vector<std::string> OpenedUrls() const { return openedUrls_.Get(); }

  Platform::ApplicationState State() const override { return state_.Get(); }
  std::shared_ptr<Platform::Window> KeyWindow() const override { return keyWindow; }
  std::vector<std::shared_ptr<Platform::Window>> Windows() const override { return windows; }
  bool OpenUrl(const std::string& url) override;

 private:
  Guarded<Platform::ApplicationState> state_{Platform::ApplicationState::Active};
  Guarded<bool> opensUrls_{true};
  Guarded<std::vector<std::string>> openedUrls_;
};

}  // namespace TestSupport
