// Registers the cart, puts two things into it, and asks it to leave.

#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <future>
#include <iostream>
#include <memory>

#include <QEXCore_iOS/QEXCore.h>
#include <QEXCore_iOS/QEXExtensionEvent.h>

#include "CartExtension.h"

namespace {

std::shared_ptr<QEXExtensionEvent> CartEvent(const char* source, const Platform::Value& data) {
  return QEXExtensionEvent::extensionEventWithName("cart", "shop.cart", source, data, nullptr);
}

// Adds one thing and returns how many there are then; -1 when nobody answers.
std::int64_t AddToCart(const char* sku) {
  const auto answered = std::make_shared<std::promise<std::int64_t>>();
  std::future<std::int64_t> items = answered->get_future();
  const auto onAnswer = [answered](const std::shared_ptr<QEXExtensionEvent>& answer) {
    answered->set_value(answer->eventData().Get("items").AsInt64());
  };
  QEXCore::dispatchEventWithResponseCallback(CartEvent("shop.add", {{"sku", sku}}), onAnswer,
                                             nullptr);
  const bool isThere = items.wait_for(std::chrono::seconds(10)) == std::future_status::ready;
  return isThere ? items.get() : -1;
}

}  // namespace

int main() {
  Platform::Error error;
  if (!QEXCore::registerExtension(Platform::ClassOf<CartExtension>(), &error)) {
    std::cerr << "the cart was refused: " << error.LocalizedDescription() << '\n';
    return EXIT_FAILURE;
  }
  QEXCore::start(nullptr);

  std::cout << "items in the cart: " << AddToCart("A-17") << '\n';
  std::cout << "items in the cart: " << AddToCart("B-4") << '\n';

  if (!QEXCore::dispatchEvent(CartEvent("shop.close", {}), &error)) {
    std::cerr << "the cart stays: " << error.LocalizedDescription() << '\n';
    return EXIT_FAILURE;
  }
  return EXIT_SUCCESS;
}
