#include "CartReader.h"

#include <chrono>
#include <future>
#include <iostream>

#include <QEXCore_iOS/QEXCore.h>
#include <QEXCore_iOS/QEXExtensionApi.h>
#include <QEXCore_iOS/QEXExtensionEvent.h>
#include <QEXCore_iOS/QEXExtensionListener.h>

#include "CartExtension.h"

namespace Storefront {
namespace {

using Event = std::shared_ptr<QEXExtensionEvent>;

Event NewEvent(const char* name, const char* type, const char* source,
               const Platform::Value& data) {
  return QEXExtensionEvent::extensionEventWithName(name, type, source, data, nullptr);
}

class QuestionListener : public QEXExtensionListener {
 public:
  void hear(const Event& event) override {
    // As it stood when the question was asked.
    const Platform::Value cart =
        extension()->api()->getSharedEventState("shop.cart", event, nullptr);
    QEXCore::dispatchResponseEvent(
        NewEvent("count", "storefront", "answer", {{"items", cart.Get("items")}}), event, nullptr);
  }
};

// One line of the answer's data; "no answer" when none comes.
std::string Ask(const Event& question) {
  const auto answered = std::make_shared<std::promise<std::string>>();
  std::future<std::string> answer = answered->get_future();
  QEXCore::dispatchEventWithResponseCallback(
      question,
      [answered](const Event& response) {
        answered->set_value(response->eventName().value_or("") + " " +
                            response->eventData().Description());
      },
      nullptr);
  const bool isThere = answer.wait_for(std::chrono::seconds(10)) == std::future_status::ready;
  return isThere ? answer.get() : "no answer";
}

bool Register(const Platform::Class& extensionClass) {
  Platform::Error error;
  if (QEXCore::registerExtension(extensionClass, &error)) return true;
  std::cerr << extensionClass.name() + " was refused: " + error.LocalizedDescription() + "\n";
  return false;
}

}  // namespace

std::shared_ptr<QEXExtension> CartReader::init() {
  api()->registerListener(Platform::ClassOf<QuestionListener>(), "storefront", "question", nullptr);
  return QEXExtension::init();
}

bool RegisterCart() {
  return Register(Platform::ClassOf<CartExtension>()) && Register(Platform::ClassOf<CartReader>());
}

void PutIntoCart(const std::string& sku) {
  const std::string change = Ask(NewEvent("cart", "shop.cart", "shop.add", {{"sku", sku}}));
  std::cout << "the cart answers: " + change + "\n" << std::flush;
  const std::string count = Ask(NewEvent("how many?", "storefront", "question", {}));
  std::cout << "another extension reads the cart's state: " + count + "\n" << std::flush;
}

}  // namespace Storefront
