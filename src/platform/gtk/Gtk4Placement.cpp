#include "platform/gtk/Gtk4Placement.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace Platform {
namespace {

double Between(double from, double to, double progress) { return from + (to - from) * progress; }

Rect Between(const Rect& from, const Rect& to, double progress) {
  return {.x = Between(from.x, to.x, progress),
          .y = Between(from.y, to.y, progress),
          .width = Between(from.width, to.width, progress),
          .height = Between(from.height, to.height, progress)};
}

// One axis of a view in a window that grows by `growth`. A view that keeps its size stays at the
// edge that it is nearer to, and in the middle when it is there.
void FollowAxis(bool isFlexible, Gtk4Placement::Growth manner, double before, double growth,
                double& position, double& length) {
  if (!isFlexible) return;
  if (manner == Gtk4Placement::Growth::Fills) {
    length = std::max(0.0, length + growth);
    return;
  }
  const double end = before - position - length;
  if (std::abs(position - end) < 1) {
    position += growth / 2;
  } else if (position > end) {
    position += growth;
  }
}

}  // namespace

Gtk4Placement::Gtk4Placement(GtkWidget* widget, const ViewLook& look, Growth growth,
                             std::shared_ptr<Gtk4Animator> animator)
    : widget_(Retain(widget)),
      growth_(growth),
      autoresizingMask_(look.autoresizingMask),
      animator_(std::move(animator)),
      frame_(look.frame),
      shownFrame_(look.frame) {}

void Gtk4Placement::SetFrame(const Rect& frame) {
  frame_ = frame;
  const int turn = ++frameTurn_;
  if (!animator_->IsRecording()) return ShowFrame(frame);
  const auto on = [self = weak_from_this(), turn, from = shownFrame_](double progress) {
    const auto placement = self.lock();
    if (!placement || placement->frameTurn_ != turn) return;
    placement->ShowFrame(Between(from, placement->frame_, progress));
  };
  animator_->Add({.show = on, .isReady = [self = weak_from_this()] {
                    const auto placement = self.lock();
                    return !placement || placement->isReady_;
                  }});
}

void Gtk4Placement::SetAlpha(double alpha) {
  alpha_ = std::clamp(alpha, 0.0, 1.0);
  const int turn = ++alphaTurn_;
  if (!animator_->IsRecording()) return ShowAlpha(alpha_);
  const auto on = [self = weak_from_this(), turn, from = shownAlpha_](double progress) {
    const auto placement = self.lock();
    if (!placement || placement->alphaTurn_ != turn) return;
    placement->ShowAlpha(Between(from, placement->alpha_, progress));
  };
  animator_->Add({.show = on, .isReady = [] { return true; }});
}

void Gtk4Placement::Follow(const Size& from, const Size& to) {
  const auto follow = [&](Rect& rect) {
    FollowAxis((autoresizingMask_ & kFlexibleWidth) != 0, growth_, from.width,
               to.width - from.width, rect.x, rect.width);
    FollowAxis((autoresizingMask_ & kFlexibleHeight) != 0, growth_, from.height,
               to.height - from.height, rect.y, rect.height);
  };
  follow(frame_);
  follow(shownFrame_);
}

void Gtk4Placement::Leave() {
  const auto leave = std::exchange(leave_, nullptr);
  if (leave) leave();
}

void Gtk4Placement::ShowFrame(const Rect& frame) {
  if (shownFrame_ == frame) return;
  shownFrame_ = frame;
  gtk_widget_queue_resize(widget_.get());
}

void Gtk4Placement::ShowAlpha(double alpha) {
  shownAlpha_ = alpha;
  gtk_widget_set_opacity(widget_.get(), alpha);
}

}  // namespace Platform
