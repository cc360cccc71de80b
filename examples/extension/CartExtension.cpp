#include "CartExtension.h"

#include <QEXCore_iOS/QEXCore.h>
#include <QEXCore_iOS/QEXExtensionApi.h>
#include <QEXCore_iOS/QEXExtensionEvent.h>
#include <QEXCore_iOS/QEXExtensionListener.h>

namespace {

class CartListener : public QEXExtensionListener {
 public:
  void hear(const std::shared_ptr<QEXExtensionEvent>& event) override {
    const auto cart = std::static_pointer_cast<CartExtension>(extension());
    if (event->eventSource() == "shop.close") {
      cart->api()->unregisterExtension();
      return;
    }
    const Platform::Value content = {{"items", cart->AddOne()}};
    cart->api()->setSharedEventState(content, event, nullptr);
    const auto answer = QEXExtensionEvent::extensionEventWithName("cart changed", "shop.cart",
                                                                  "shop.changed", content, nullptr);
    QEXCore::dispatchResponseEvent(answer, event, nullptr);
  }
};

}  // namespace

std::shared_ptr<QEXExtension> CartExtension::init() {
  for (const char* source : {"shop.add", "shop.close"}) {
    api()->registerListener(Platform::ClassOf<CartListener>(), "shop.cart", source, nullptr);
  }
  return QEXExtension::init();
}
