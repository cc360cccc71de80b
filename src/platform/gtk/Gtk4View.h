#pragma once

#include <memory>
#include <utility>

#include "QEXCore_iOS/Platform/View.h"
#include "platform/gtk/Gtk4Placement.h"

namespace Platform {

// What a window can take in: whatever it is, it has a place.
class Gtk4Placed {
 public:
  virtual ~Gtk4Placed() = default;
  virtual const std::shared_ptr<Gtk4Placement>& Placement() const = 0;

  // The window has gone, and the view with it.
  virtual void LoseWindow() = 0;
};

// The part of a view that all kinds of views have in common.
template <class Port>
class Gtk4View : public Port, public Gtk4Placed {
 public:
  Gtk4View(GtkWidget* widget, const ViewLook& look, Gtk4Placement::Growth growth,
           std::shared_ptr<Gtk4Animator> animator)
      : placement_(std::make_shared<Gtk4Placement>(widget, look, growth, std::move(animator))) {}

  Rect Frame() const override { return placement_->Frame(); }
  void SetFrame(const Rect& frame) override { placement_->SetFrame(frame); }
  void SetAlpha(double alpha) override { placement_->SetAlpha(alpha); }
  void RemoveFromSuperview() override { placement_->Leave(); }

  const std::shared_ptr<Gtk4Placement>& Placement() const override { return placement_; }
  void LoseWindow() override {}

 private:
  const std::shared_ptr<Gtk4Placement> placement_;
};

}  // namespace Platform
