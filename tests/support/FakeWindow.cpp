#include "support/FakeWindow.h"

#include <algorithm>
#include <utility>

#include "support/FakeViews.h"

namespace TestSupport {

void FakeWindow::AddSubview(const std::shared_ptr<Platform::View>& view) {
  subviews.push_back(view);
  if (auto* web = dynamic_cast<FakeWebView*>(view.get())) web->window = weak_from_this();
  if (auto* image = dynamic_cast<FakeImageView*>(view.get())) image->window = weak_from_this();
}

void FakeWindow::BringSubviewToFront(const std::shared_ptr<Platform::View>& view) {
  const auto found = std::find(subviews.begin(), subviews.end(), view);
  if (found == subviews.end()) return;
  std::rotate(found, found + 1, subviews.end());
  ++timesBroughtToFront;
}

void FakeWindow::Remove(const Platform::View* view) {
  std::erase_if(subviews, [view](const auto& each) { return each.get() == view; });
}

void FakeWindow::Close() {
  const auto gone = std::exchange(subviews, {});
  for (const auto& view : gone) {
    auto* web = dynamic_cast<FakeWebView*>(view.get());
    const auto delegate = web == nullptr ? nullptr : web->delegate.lock();
    if (delegate) delegate->DidLoseWindow();
  }
}

}  // namespace TestSupport
