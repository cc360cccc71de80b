#include "platform/gtk/Gtk4Application.h"

#include <algorithm>
#include <utility>

#include "platform/gtk/Gtk4Window.h"
#include "platform/gtk/Toplevels.h"

namespace Platform {

Gtk4Application::Gtk4Application(GtkApplication* application,
                                 std::shared_ptr<NotificationCenter> notificationCenter,
                                 std::shared_ptr<Application> opener)
    : application_(Retain(application)),
      opener_(std::move(opener)),
      life_(application, std::move(notificationCenter)) {}

GtkWindow* Gtk4Application::FrontWindow() const {
  if (GtkWindow* active = ActiveWindow()) return active;
  const auto windows = OwnWindows();
  return windows.empty() ? nullptr : windows.front();
}

void Gtk4Application::ComeToFront() const {
  if (GtkWindow* window = FrontWindow()) {
    gtk_window_present(window);
  } else if (application_) {
    g_application_activate(G_APPLICATION(application_.get()));
  }
}

std::shared_ptr<Window> Gtk4Application::KeyWindow() const {
  GtkWindow* active = ActiveWindow();
  return active == nullptr ? nullptr : Gtk4Window::Of(active);
}

std::vector<std::shared_ptr<Window>> Gtk4Application::Windows() const {
  std::vector<std::shared_ptr<Window>> windows;
  for (GtkWindow* window : OwnWindows()) windows.push_back(Gtk4Window::Of(window));
  return windows;
}

std::vector<GtkWindow*> Gtk4Application::OwnWindows() const {
  std::vector<GtkWindow*> windows;
  if (application_) {
    for (GList* each = gtk_application_get_windows(application_.get()); each != nullptr;
         each = each->next) {
      windows.push_back(GTK_WINDOW(each->data));
    }
  } else {
    windows = AllToplevels();
  }
  std::erase_if(windows, [](GtkWindow* window) { return WindowBelow(window) != window; });
  return windows;
}

GtkWindow* Gtk4Application::ActiveWindow() const {
  const auto toplevels = AllToplevels();
  const auto active = std::find_if(toplevels.begin(), toplevels.end(), &IsInFront);
  if (active == toplevels.end()) return nullptr;
  GtkWindow* window = WindowBelow(*active);
  const auto own = OwnWindows();
  return std::find(own.begin(), own.end(), window) == own.end() ? nullptr : window;
}

}  // namespace Platform
