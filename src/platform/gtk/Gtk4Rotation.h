#pragma once

#include <functional>
#include <memory>
#include <vector>

#include <gtk/gtk.h>

#include "QEXCore_iOS/Platform/MainQueue.h"
#include "QEXCore_iOS/Platform/Ui.h"
#include "platform/gtk/RotationWatches.h"
#include "platform/gtk/Toplevels.h"

namespace Platform {

// Tells when a window that stood upright comes to lie, or the other way round. Lives on the main
// queue.
class Gtk4Rotation {
 public:
  explicit Gtk4Rotation(std::shared_ptr<MainQueue> mainQueue);

  // As Ui::WatchRotation. The watch may outlive this.
  std::unique_ptr<RotationWatch> Watch(std::function<void()> rotated);

 private:
  std::vector<SignalConnection> Follow(GtkWindow* window);
  void Tell();

  const std::shared_ptr<MainQueue> mainQueue_;
  const std::shared_ptr<RotationWatches> watches_;
  ToplevelWatch windows_;
};

}  // namespace Platform
