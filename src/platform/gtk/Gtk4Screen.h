#pragma once

#include <mutex>

#include <gtk/gtk.h>

#include "QEXCore_iOS/Platform/Screen.h"
#include "platform/gtk/Signal.h"

namespace Platform {

// The display's first monitor. Must be made and go on the main queue's thread, which keeps it up to
// date; may be asked on any.
class Gtk4Screen final : public Screen {
 public:
  explicit Gtk4Screen(GdkDisplay* display);

  ScreenMetrics MainScreen() const override;

 private:
  void FollowFirstMonitor();
  void Measure(GdkMonitor* monitor);

  mutable std::mutex mutex_;
  ScreenMetrics metrics_;  // guarded by mutex_

  // These belong to the main queue.
  const GObjectPointer<GListModel> monitors_;
  SignalConnection onItemsChanged_;
  SignalConnection onGeometry_;
  SignalConnection onScale_;
};

}  // namespace Platform
