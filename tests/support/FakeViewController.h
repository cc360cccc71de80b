#pragma once

#include <memory>
#include <vector>

#include "QEXCore_iOS/Platform/Window.h"

namespace TestSupport {

// A view controller that is what the test says.
class FakeViewController final : public Platform::ViewController {
 public:
  std::shared_ptr<ViewController> presented;
  Platform::ContainerKind kind = Platform::ContainerKind::None;
  std::vector<std::shared_ptr<ViewController>> controllers;
  std::shared_ptr<ViewController> top;
  std::shared_ptr<ViewController> selected;
  bool isViewLoaded = true;

  // What Present was called with.
  struct Presentation {
    std::shared_ptr<Platform::AlertController> alert;
    bool animated = false;
  };
  std::vector<Presentation> presentations;
  bool failsToPresent = false;

  std::shared_ptr<ViewController> PresentedViewController() const override { return presented; }
  Platform::ContainerKind Kind() const override { return kind; }
  std::vector<std::shared_ptr<ViewController>> ViewControllers() const override {
    return controllers;
  }
  std::shared_ptr<ViewController> TopViewController() const override { return top; }
  std::shared_ptr<ViewController> SelectedViewController() const override { return selected; }
  bool IsViewLoaded() const override { return isViewLoaded; }
  void Present(const std::shared_ptr<Platform::AlertController>& alert, bool animated) override;
};

}  // namespace TestSupport
