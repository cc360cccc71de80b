#pragma once

#include <memory>
#include <vector>

#include "QEXCore_iOS/Platform/Window.h"
#include "support/FakeViewController.h"

namespace TestSupport {

// A window of 375 by 812 points unless the test says otherwise.
class FakeWindow final : public Platform::Window, public std::enable_shared_from_this<FakeWindow> {
 public:
  Platform::Rect frame{0, 0, 375, 812};
  std::shared_ptr<Platform::ViewController> root = std::make_shared<FakeViewController>();

  // The views over its content, the one in front last.
  std::vector<std::shared_ptr<Platform::View>> subviews;
  int timesBroughtToFront = 0;

  // The root as the double that it is until a test sets another.
  std::shared_ptr<FakeViewController> RootDouble() const {
    return std::dynamic_pointer_cast<FakeViewController>(root);
  }

  Platform::Rect Frame() const override { return frame; }
  std::shared_ptr<Platform::ViewController> RootViewController() const override { return root; }
  void AddSubview(const std::shared_ptr<Platform::View>& view) override;
  void BringSubviewToFront(const std::shared_ptr<Platform::View>& view) override;
  void Remove(const Platform::View* view);

  // The window goes, and the views in it.
  void Close();
};

}  // namespace TestSupport
