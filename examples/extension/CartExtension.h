#pragma once

#include <memory>
#include <optional>
#include <string>

#include <QEXCore_iOS/QEXExtension.h>

// Keeps count of what is in the cart: adds one for every "shop.cart" event of the source
// "shop.add", shares the count and answers with it. Leaves at one of the source "shop.close".
class CartExtension : public QEXExtension {
 public:
  std::optional<std::string> name() const override { return "shop.cart"; }
  std::optional<std::string> version() const override { return "1.0.0"; }
  std::shared_ptr<QEXExtension> init() override;

  int AddOne() { return ++items_; }

 private:
  int items_ = 0;
};
