#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "QEXCore_iOS/Platform/View.h"
#include "support/FakeWindow.h"

namespace TestSupport {

class FakeWebView final : public Platform::WebView {
 public:
  explicit FakeWebView(Platform::WebViewSettings given)
      : settings(std::move(given)), frame(settings.look.frame) {}

  const Platform::WebViewSettings settings;
  Platform::Rect frame;
  std::weak_ptr<FakeWindow> window;
  std::weak_ptr<Platform::WebViewDelegate> delegate;
  std::string html;
  std::string baseUrl;

  // The user follows a link. Nothing when the view still waits for its delegate's word.
  std::optional<bool> Navigate(const std::string& url) const;

  Platform::Rect Frame() const override { return frame; }
  void SetFrame(const Platform::Rect& wanted) override { frame = wanted; }
  void SetAlpha(double /*alpha*/) override {}
  void RemoveFromSuperview() override;
  void SetDelegate(std::weak_ptr<Platform::WebViewDelegate> wanted) override {
    delegate = std::move(wanted);
  }
  void LoadHtml(const std::string& text, const std::string& base) override {
    html = text;
    baseUrl = base;
  }
};

class FakePanGestureRecognizer final : public Platform::PanGestureRecognizer {
 public:
  explicit FakePanGestureRecognizer(std::function<void(PanGestureRecognizer&)> moved)
      : moved_(std::move(moved)) {}

  // The finger moves by so much.
  void Move(const Platform::Point& by);

  Platform::Point TranslationInSuperview() const override { return translation_; }
  void SetTranslationInSuperview(const Platform::Point& translation) override {
    translation_ = translation;
  }

 private:
  const std::function<void(PanGestureRecognizer&)> moved_;
  Platform::Point translation_;
};

class FakeTapGestureRecognizer final : public Platform::GestureRecognizer {
 public:
  FakeTapGestureRecognizer(int taps, std::function<void()> tapped)
      : requiredTaps(taps), tapped_(std::move(tapped)) {}

  const int requiredTaps;

  void Tap() const { tapped_(); }

 private:
  const std::function<void()> tapped_;
};

class FakeImageView final : public Platform::ImageView {
 public:
  explicit FakeImageView(Platform::ImageViewSettings given)
      : settings(std::move(given)), frame(settings.look.frame) {}

  const Platform::ImageViewSettings settings;
  Platform::Rect frame;
  double alpha = 1;
  bool cannotBeRemoved = false;
  std::weak_ptr<FakeWindow> window;
  std::vector<std::shared_ptr<Platform::GestureRecognizer>> recognizers;

  // The recogniser of that type, null when there is none.
  template <class Recognizer>
  std::shared_ptr<Recognizer> RecognizerOf() const {
    for (const auto& each : recognizers) {
      if (auto found = std::dynamic_pointer_cast<Recognizer>(each)) return found;
    }
    return nullptr;
  }

  Platform::Rect Frame() const override { return frame; }
  void SetFrame(const Platform::Rect& wanted) override { frame = wanted; }
  void SetAlpha(double wanted) override { alpha = wanted; }
  void RemoveFromSuperview() override;
  void AddGestureRecognizer(std::shared_ptr<Platform::GestureRecognizer> recognizer) override {
    recognizers.push_back(std::move(recognizer));
  }
};

}  // namespace TestSupport
