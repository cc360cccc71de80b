#pragma once

#include <functional>
#include <string>

#include <gtk/gtk.h>

// The shop's window. Its buttons track what the visitor does; whatever appears over it comes from
// the SDK. Lives on the main thread, as long as its GtkWindow.
class ShopWindow {
 public:
  explicit ShopWindow(GtkApplication* application);
  ShopWindow(const ShopWindow&) = delete;
  ShopWindow& operator=(const ShopWindow&) = delete;

  // Says something at the window's lower edge.
  void Say(const std::string& text);

 private:
  using Action = std::function<void()>;

  GtkWidget* NewProduct(const std::string& name, const std::string& label, double price);
  GtkWidget* NewButton(const std::string& label, Action action);
  void AddToCart(const std::string& name, double price);

  double total_ = 0;
  GtkWidget* cart_ = nullptr;
  GtkWidget* status_ = nullptr;
};
