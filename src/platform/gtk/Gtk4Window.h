#pragma once

#include <memory>

#include <gtk/gtk.h>

#include "QEXCore_iOS/Platform/Window.h"
#include "platform/gtk/Gtk4Overlay.h"
#include "platform/gtk/Signal.h"
#include "platform/gtk/WeakObject.h"

namespace Platform {

// A window of the application as the SDK sees it: its frame is that of its content, without title
// bar and menu. Once its GtkWindow has gone, it has no content and takes in nothing.
class Gtk4Window final : public Window, public std::enable_shared_from_this<Gtk4Window> {
 public:
  // The one that stands for `window`, as long as that lives.
  static std::shared_ptr<Gtk4Window> Of(GtkWindow* window);

  Gtk4Window(GtkWindow* window);  // through Of

  // The content that the application gave the window, whether or not views lie over it; null when
  // there is none.
  GtkWidget* Content() const;

  Rect Frame() const override;
  std::shared_ptr<ViewController> RootViewController() const override;
  void AddSubview(const std::shared_ptr<View>& view) override;
  void BringSubviewToFront(const std::shared_ptr<View>& view) override;

 private:
  void Remove(const Gtk4Placement* placement);
  void LoseWindow();
  Size ContentSize(GtkWindow* window) const;

  const WeakObject<GtkWindow> window_;
  std::unique_ptr<Gtk4Overlay> overlay_;  // while there are views
  SignalConnection onDestroy_;
};

}  // namespace Platform
