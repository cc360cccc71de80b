#pragma once

#include <memory>
#include <optional>
#include <string>

#include <QEXCore_iOS/QEXExtension.h>

namespace Storefront {

// A second extension beside the cart: answers each "storefront" event of the source "question" with
// the number of items that it reads from the state that the cart shares.
class CartReader : public QEXExtension {
 public:
  std::optional<std::string> name() const override { return "storefront.cartReader"; }
  std::optional<std::string> version() const override { return "1.0.0"; }
  std::shared_ptr<QEXExtension> init() override;
};

// Adds the cart and the reader to the hub. False, with a line on standard error, when one is
// refused.
bool RegisterCart();

// Puts one thing into the cart and shows what the cart answers, and what the reader then reads of
// the cart's state. Waits for both, for ten seconds at most.
void PutIntoCart(const std::string& sku);

}  // namespace Storefront
