// A shop in a window. Its buttons track what the visitor does; the rules, from a server, say what
// is shown then: an alert, a message, the floating button, a notification.

#include <cstdlib>
#include <iostream>
#include <memory>
#include <string>

#include <CLI/CLI.hpp>
#include <QEXCore_gtk/Gtk.h>
#include <QEXCore_iOS/QEXCore.h>
#include <gtk/gtk.h>

#include "RulesWatcher.h"
#include "ShopWindow.h"

namespace {

struct Shop {
  std::string rulesUrl;
  std::string rulesSha256;
  std::unique_ptr<ShopWindow> window;

  void Say(const std::string& text) const {
    std::cout << text << std::endl;
    if (window) window->Say(text);
  }
};

void StartSdk(Shop& shop) {
  QEXCore::setLogLevel(QEXMobileLogLevel::warning);
  RulesWatcher::Register(
      [&shop](const std::string& rule, const std::string& consequence, const std::string& outcome) {
        shop.Say("rule " + rule + ": " + consequence + " " + outcome);
      });
  if (!shop.rulesUrl.empty()) {
    QEXCore::updateConfiguration(
        {{"rules.url", shop.rulesUrl}, {"rules.sha256", shop.rulesSha256}});
    QEXCore::downloadRules();
  }
  QEXCore::start([] {});
  QEXCore::lifecycleStart({{"channel", "window"}});
}

void OnActivate(GtkApplication* application, gpointer data) {
  auto& shop = *static_cast<Shop*>(data);
  shop.window = std::make_unique<ShopWindow>(application);
  StartSdk(shop);
  shop.Say("The shop is open.");
}

int Run(Shop& shop, Platform::HostOptions options) {
  if (gtk_init_check() == FALSE) {
    std::cerr << "There is no display for the shop's window; the storefront needs none.\n";
    return EXIT_FAILURE;
  }
  options.notificationOpened = [&shop](const Platform::Value& userInfo) {
    QEXCore::collectLaunchInfo(userInfo);
    shop.Say("Opened from a notification, for " + userInfo.Get("krv_deeplink").AsString());
  };
  GtkApplication* application =
      gtk_application_new("com.example.ShopWindow", G_APPLICATION_NON_UNIQUE);
  Platform::Host::Install(Gtk::CreateHost(application, options));
  g_signal_connect(application, "activate", G_CALLBACK(&OnActivate), &shop);
  const int status = g_application_run(G_APPLICATION(application), 0, nullptr);
  QEXCore::lifecyclePause();
  g_object_unref(application);
  return status;
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app("A shop in a window, on QEXCore", "shopwindow");
  Shop shop;
  Platform::HostOptions options;
  app.add_option("--rules", shop.rulesUrl, "https URL of the archive of rules");
  app.add_option("--sha256", shop.rulesSha256, "SHA-256 of that archive");
  app.add_option("--trust", options.extraTrustFile, "PEM file of an authority to trust");
  CLI11_PARSE(app, argc, argv);
  return Run(shop, options);
}
