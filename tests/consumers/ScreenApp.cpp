// What an app with a window needs of the library: one header, one library, one line.

#include <cstdlib>
#include <iostream>

#include <QEXCore_gtk/Gtk.h>
#include <QEXCore_iOS/QEXCore.h>

int main() {
  Platform::Host::Install(Gtk::CreateHost(nullptr));
  QEXCore::trackAction("addToCart", {{"sku", "A-17"}, {"size", "M"}});
  std::cout << "QEXCore " << QEXCore::extensionVersion() << " has a screen\n";
  return EXIT_SUCCESS;
}
