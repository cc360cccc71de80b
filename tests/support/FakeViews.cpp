#include "support/FakeViews.h"

#include "QEXCore_iOS/Platform/DeviceError.h"

namespace TestSupport {

std::optional<bool> FakeWebView::Navigate(const std::string& url) const {
  const auto asked = delegate.lock();
  if (!asked) return false;
  if (settings.kind == Platform::WebViewKind::Legacy) return asked->ShouldStartLoad(url);
  std::optional<bool> decision;
  asked->DecidePolicy(url, [&decision](bool allow) { decision = allow; });
  return decision;
}

void FakeWebView::RemoveFromSuperview() {
  if (const auto in = window.lock()) in->Remove(this);
  window.reset();
}

void FakePanGestureRecognizer::Move(const Platform::Point& by) {
  translation_.x += by.x;
  translation_.y += by.y;
  moved_(*this);
}

void FakeImageView::RemoveFromSuperview() {
  if (cannotBeRemoved) throw Platform::DeviceError("The device failed.");
  if (const auto in = window.lock()) in->Remove(this);
  window.reset();
}

}  // namespace TestSupport
