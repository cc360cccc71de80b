#include "platform/gtk/Gtk4Host.h"

#include <memory>

#include "platform/gtk/Gtk4Application.h"
#include "platform/gtk/Gtk4Screen.h"
#include "platform/gtk/Gtk4Ui.h"

namespace Platform {

Host WithGtk4(Host host, GtkApplication* application) {
  const auto own =
      std::make_shared<Gtk4Application>(application, host.notificationCenter, host.application);
  host.application = own;
  host.screen = std::make_shared<Gtk4Screen>(gdk_display_get_default());
  host.ui = std::make_shared<Gtk4Ui>(host.mainQueue, host.systemLog,
                                     [own] { return own->FrontWindow(); });
  return host;
}

void BringToFront(const Application& application) {
  const auto* own = dynamic_cast<const Gtk4Application*>(&application);
  if (own != nullptr) own->ComeToFront();
}

}  // namespace Platform
