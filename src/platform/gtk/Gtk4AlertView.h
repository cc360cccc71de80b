#pragma once

#include <functional>

#include <gtk/gtk.h>

#include "QEXCore_iOS/Platform/Alert.h"

namespace Platform {

// An alert of the legacy kind, over the window in front. Lives on the main queue. One without
// buttons is dismissed in silence.
class Gtk4AlertView final : public AlertView {
 public:
  using FrontWindow = std::function<GtkWindow*()>;

  Gtk4AlertView(AlertViewSettings settings, FrontWindow frontWindow);

  // Throws DeviceError when there is no window.
  void Show() override;

 private:
  const AlertViewSettings settings_;
  const FrontWindow frontWindow_;
};

}  // namespace Platform
