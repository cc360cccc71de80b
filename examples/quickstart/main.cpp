#include <iostream>

#include <QEXCore_iOS/QEXCore.h>

int main() {
  QEXCore::setLogLevel(QEXMobileLogLevel::warning);
  QEXCore::updateConfiguration({{"analytics.collector", "https://collector.example"}});
  QEXCore::start([] { std::cout << "started\n"; });
  QEXCore::trackAction("addToCart", {{"sku", "A-17"}, {"size", "M"}});
  std::cout << "press Enter to end\n";
  std::cin.get();
}
