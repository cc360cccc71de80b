#pragma once

#include <memory>
#include <vector>

#include <gtk/gtk.h>

#include "QEXCore_iOS/Platform/Window.h"
#include "platform/gtk/WeakObject.h"

namespace Platform {

// A widget that fills a window or a part of one. A GtkPaned is a split container, a GtkStack a
// navigation container, a GtkNotebook a tab-bar container, and a GtkAssistant a page container that
// holds the page that it shows. Whichever widget of a window is asked presents the window's modal
// dialog. Lives on the main queue.
class Gtk4ViewController final : public ViewController {
 public:
  // Null for null.
  static std::shared_ptr<Gtk4ViewController> For(GtkWidget* widget);

  explicit Gtk4ViewController(GtkWidget* widget);

  GObjectPointer<GtkWidget> Widget() const { return widget_.Get(); }

  std::shared_ptr<ViewController> PresentedViewController() const override;
  ContainerKind Kind() const override;
  std::vector<std::shared_ptr<ViewController>> ViewControllers() const override;
  std::shared_ptr<ViewController> TopViewController() const override;
  std::shared_ptr<ViewController> SelectedViewController() const override;
  bool IsViewLoaded() const override;
  void Present(const std::shared_ptr<AlertController>& alert, bool animated) override;

 private:
  GObjectPointer<GtkWindow> Window() const;

  const WeakObject<GtkWidget> widget_;
};

}  // namespace Platform
