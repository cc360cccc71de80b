#pragma once

#include <memory>
#include <vector>

#include <gtk/gtk.h>

#include "QEXCore_iOS/Platform/View.h"
#include "platform/gtk/Gtk4Placement.h"
#include "platform/gtk/Signal.h"

namespace Platform {

// A layer over the content of a window, which knows nothing of it: the content is put into a
// GtkOverlay in its place, again whenever the application gives the window other content, and is
// put back when this goes. Lives on the main queue.
class Gtk4Overlay {
 public:
  // `size` is that of the content, until it has been laid out here.
  Gtk4Overlay(GtkWindow* window, const Size& size);
  ~Gtk4Overlay();
  Gtk4Overlay(const Gtk4Overlay&) = delete;
  Gtk4Overlay& operator=(const Gtk4Overlay&) = delete;

  // The content that the application gave the window; null when it gave none.
  GtkWidget* Content() const;
  const Size& ContentSize() const { return size_; }

  // The views, the one in front last. A view that is there already comes to the front.
  void Add(const std::shared_ptr<View>& view);
  bool Holds(const std::shared_ptr<View>& view) const;
  void BringToFront(const std::shared_ptr<View>& view);
  void Remove(const Gtk4Placement* placement);
  const std::vector<std::shared_ptr<View>>& Views() const { return views_; }

  // The window is being destroyed, and its content with it.
  void Abandon();

 private:
  void TakeContent();
  void GiveContentBack();
  bool Place(GtkWidget* child, GdkRectangle* place);
  void FollowSize();

  GtkWindow* window_;  // null once abandoned
  const GObjectPointer<GtkOverlay> overlay_;
  std::vector<std::shared_ptr<View>> views_;
  WeakObject<GtkWidget> focusBefore_;  // the first view came
  Size size_;
  bool isExchanging_ = false;
  SignalConnection onChild_;
  SignalConnection onPlace_;
};

}  // namespace Platform
