#pragma once

#include <functional>

#include "QEXCore_iOS/Platform/View.h"
#include "platform/gtk/Gtk4Gesture.h"
#include "platform/gtk/Signal.h"

namespace Platform {

// The pointer with its button down, or a finger, that has come further than the desktop's drag
// threshold. From there on nothing else recognises the movement: it is no tap. Lives on the main
// queue.
class Gtk4PanGestureRecognizer final : public PanGestureRecognizer, public Gtk4Gesture {
 public:
  explicit Gtk4PanGestureRecognizer(std::function<void(PanGestureRecognizer&)> moved);

  Point TranslationInSuperview() const override;
  void SetTranslationInSuperview(const Point& translation) override;

 private:
  Point PointInSuperview() const;
  void Begin();
  void Update();
  bool IsBeyondThreshold() const;

  const std::function<void(PanGestureRecognizer&)> moved_;
  Point origin_;  // where the translation counts from
  Point point_;
  bool isPanning_ = false;
  SignalConnection onBegin_;
  SignalConnection onUpdate_;
};

}  // namespace Platform
