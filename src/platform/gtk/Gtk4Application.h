#pragma once

#include <memory>
#include <string>
#include <vector>

#include <gtk/gtk.h>

#include "QEXCore_iOS/Platform/Application.h"
#include "QEXCore_iOS/Platform/NotificationCenter.h"
#include "platform/gtk/Gtk4Life.h"
#include "platform/gtk/WeakObject.h"

namespace Platform {

// An application with windows of GTK's. Must be made and go on the main queue's thread.
class Gtk4Application final : public Application {
 public:
  // `application` may be null: every window of the process is the application's then. URLs are
  // opened by `opener`.
  Gtk4Application(GtkApplication* application,
                  std::shared_ptr<NotificationCenter> notificationCenter,
                  std::shared_ptr<Application> opener);

  // The window to show something over: the key window, else the first; null when there is none.
  GtkWindow* FrontWindow() const;

  // Presents the front window; without any, activates the application.
  void ComeToFront() const;

  ApplicationState State() const override { return life_.State(); }
  std::shared_ptr<Window> KeyWindow() const override;
  std::vector<std::shared_ptr<Window>> Windows() const override;
  bool OpenUrl(const std::string& url) override { return opener_->OpenUrl(url); }

 private:
  // What lies over a window as a modal dialog is none of its own.
  std::vector<GtkWindow*> OwnWindows() const;
  GtkWindow* ActiveWindow() const;

  const GObjectPointer<GtkApplication> application_;
  const std::shared_ptr<Application> opener_;
  Gtk4Life life_;
};

}  // namespace Platform
