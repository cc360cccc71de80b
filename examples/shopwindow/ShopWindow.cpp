#include "ShopWindow.h"

#include <cstdio>
#include <utility>

#include <QEXCore_iOS/QEXCore.h>

namespace {

std::string Amount(double amount) {
  char text[32];
  std::snprintf(text, sizeof text, "%.2f", amount);
  return text;
}

void OnClicked(GtkButton* /*button*/, gpointer action) {
  (*static_cast<std::function<void()>*>(action))();
}

void DeleteAction(gpointer action, GClosure* /*closure*/) {
  delete static_cast<std::function<void()>*>(action);
}

GtkWidget* NewHeading(const std::string& text) {
  GtkWidget* heading = gtk_label_new(text.c_str());
  gtk_widget_add_css_class(heading, "title-2");
  return heading;
}

}  // namespace

ShopWindow::ShopWindow(GtkApplication* application) {
  GtkWidget* content = gtk_box_new(GTK_ORIENTATION_VERTICAL, 12);
  for (const auto set : {&gtk_widget_set_margin_top, &gtk_widget_set_margin_bottom,
                         &gtk_widget_set_margin_start, &gtk_widget_set_margin_end}) {
    set(content, 16);
  }
  auto* box = GTK_BOX(content);
  gtk_box_append(box, NewHeading("Shoes, hats and umbrellas"));
  gtk_box_append(box, NewProduct("running shoes", "Running _shoes", 59.50));
  gtk_box_append(box, NewProduct("straw hat", "Straw ha_t", 24));
  gtk_box_append(box, NewProduct("umbrella", "_Umbrella", 18.50));
  cart_ = gtk_label_new("The cart is empty.");
  gtk_box_append(box, cart_);
  gtk_box_append(box, NewButton("Look at _hats", [] { QEXCore::trackState("hats", {}); }));
  gtk_box_append(
      box, NewButton("_Remind me in three seconds", [] { QEXCore::trackAction("remindMe", {}); }));
  gtk_box_append(box, NewButton("I need hel_p", [] { QEXCore::trackAction("needHelp", {}); }));
  status_ = gtk_label_new("");
  gtk_label_set_wrap(GTK_LABEL(status_), TRUE);
  gtk_widget_set_vexpand(status_, TRUE);
  gtk_widget_set_valign(status_, GTK_ALIGN_END);
  gtk_box_append(box, status_);

  GtkWidget* window = gtk_application_window_new(application);
  gtk_window_set_title(GTK_WINDOW(window), "The QEXCore shop");
  gtk_window_set_default_size(GTK_WINDOW(window), 400, 640);
  gtk_window_set_child(GTK_WINDOW(window), content);
  gtk_window_present(GTK_WINDOW(window));
}

void ShopWindow::Say(const std::string& text) {
  gtk_label_set_text(GTK_LABEL(status_), text.c_str());
}

GtkWidget* ShopWindow::NewProduct(const std::string& name, const std::string& label, double price) {
  return NewButton(label + " · " + Amount(price), [this, name, price] { AddToCart(name, price); });
}

GtkWidget* ShopWindow::NewButton(const std::string& label, Action action) {
  GtkWidget* button = gtk_button_new_with_mnemonic(label.c_str());
  g_signal_connect_data(button, "clicked", G_CALLBACK(&OnClicked), new Action(std::move(action)),
                        &DeleteAction, G_CONNECT_DEFAULT);
  return button;
}

void ShopWindow::AddToCart(const std::string& name, double price) {
  total_ += price;
  gtk_label_set_text(GTK_LABEL(cart_), ("In the cart: " + Amount(total_)).c_str());
  QEXCore::trackAction("addToCart", {{"product", name}, {"total", Amount(total_)}});
}
