// What an app needs of the library, and no more: one header and one library.

#include <cstdlib>
#include <future>
#include <iostream>

#include <QEXCore_iOS/QEXCore.h>

int main() {
  std::promise<void> started;
  QEXCore::start([&started] { started.set_value(); });
  QEXCore::trackAction("addToCart", {{"sku", "A-17"}, {"size", "M"}});
  if (started.get_future().wait_for(std::chrono::seconds(10)) != std::future_status::ready) {
    std::cerr << "the SDK did not start\n";
    return EXIT_FAILURE;
  }
  std::cout << "QEXCore " << QEXCore::extensionVersion() << " started\n";
  return EXIT_SUCCESS;
}
