#include "QEXCore_gtk/Gtk.h"

#include <memory>
#include <utility>

#include <gtk/gtk.h>

#include "platform/gtk/Gtk4Host.h"

namespace Gtk {

Platform::Host CreateHost(GtkApplication* application, const Platform::HostOptions& options) {
  if (gtk_init_check() == FALSE) {
    auto host = Platform::Host::CreateDefault(options);
    host.systemLog->Write("No display can be opened: nothing will be shown.");
    return host;
  }
  auto own = options;
  own.mainQueueThread = Platform::HostOptions::MainQueueThread::LoopOnly;
  // The application is there only after the notifications; the host keeps both.
  const auto presented = std::make_shared<std::weak_ptr<Platform::Application>>();
  own.notificationOpened = [presented,
                            opened = options.notificationOpened](const Platform::Value& userInfo) {
    if (const auto shown = presented->lock()) Platform::BringToFront(*shown);
    if (opened) opened(userInfo);
  };
  auto host = Platform::WithGtk4(Platform::Host::CreateDefault(own), application);
  *presented = host.application;
  return host;
}

}  // namespace Gtk
