#pragma once

#include <functional>
#include <memory>

#include <gtk/gtk.h>

#include "QEXCore_iOS/Platform/View.h"
#include "platform/gtk/Gtk4Animator.h"
#include "platform/gtk/WeakObject.h"

namespace Platform {

struct Size {
  double width = 0;
  double height = 0;

  friend bool operator==(const Size&, const Size&) = default;
};

// Where a widget lies over the content of a window, and how visible it is. Lives on the main queue;
// made as a shared pointer.
class Gtk4Placement : public std::enable_shared_from_this<Gtk4Placement> {
 public:
  // What becomes of the flexible sides of a view in a window that changes its size.
  enum class Growth {
    Fills,      // it grows with the window
    KeepsSize,  // it has no use for more room: it keeps to the edge that it is nearer to
  };

  Gtk4Placement(GtkWidget* widget, const ViewLook& look, Growth growth,
                std::shared_ptr<Gtk4Animator> animator);

  GtkWidget* Widget() const { return widget_.get(); }

  Rect Frame() const { return frame_; }
  void SetFrame(const Rect& frame);
  void SetAlpha(double alpha);

  // Where it is seen now, on its way to its frame.
  Rect ShownFrame() const { return shownFrame_; }

  // What it lies in changed its size.
  void Follow(const Size& from, const Size& to);

  // An animation of what is not ready waits, for a while.
  void SetReady(bool isReady) { isReady_ = isReady; }

  // `leave` takes the view out of the window that it has come into; empty when it has left.
  void SetWayOut(std::function<void()> leave) { leave_ = std::move(leave); }
  void Leave();

 private:
  void ShowFrame(const Rect& frame);
  void ShowAlpha(double alpha);

  const GObjectPointer<GtkWidget> widget_;
  const Growth growth_;
  const std::uint32_t autoresizingMask_;
  const std::shared_ptr<Gtk4Animator> animator_;
  Rect frame_;
  Rect shownFrame_;
  double alpha_ = 1;
  double shownAlpha_ = 1;
  int frameTurn_ = 0;  // counts what set the frame: an animation ends when something else does
  int alphaTurn_ = 0;
  bool isReady_ = true;
  std::function<void()> leave_;
};

}  // namespace Platform
