// Shows a message and a floating button and ends with both on screen, as an application does whose
// user closes it. Ends well when that goes well.

#include <cstdlib>
#include <memory>

#include <gtk/gtk.h>

#include "QEXCore_gtk/Gtk.h"
#include "services/ui/NativeUiService.h"
#include "support/UiListeners.h"
#include "ui/Desktop.h"

int main() {
  Platform::Host::Install(Gtk::CreateHost(nullptr));
  auto* window = GTK_WINDOW(gtk_window_new());
  gtk_window_set_default_size(window, 300, 400);
  gtk_window_present(window);
  TestSupport::Calls calls;
  const auto service = Velmora::CreateNativeUiService();
  const auto message =
      service->CreateFullscreenMessage("<body style='background:#2060C0'></body>",
                                       std::make_shared<TestSupport::FullscreenListener>(calls));
  const auto button = service->CreateFloatingButton(nullptr);
  if (!TestSupport::Until([&] { return gtk_window_is_active(window) != FALSE; })) {
    return EXIT_FAILURE;
  }
  message->Show();
  button->Display();
  const bool isShown = TestSupport::Until([window] {
    GtkWidget* all = gtk_window_get_child(window);
    return all != nullptr && TestSupport::ColourAt(all, 20, 20) == 0x2060C0;
  });
  return isShown ? EXIT_SUCCESS : EXIT_FAILURE;
}
