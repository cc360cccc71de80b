// A shop without a window: configures and starts the SDK, does what a visit to a shop does, and
// shows each event that the hub saw. Log lines go to standard error, events to standard output.

#include <cstdlib>
#include <future>
#include <iostream>
#include <mutex>
#include <string>

#include <CLI/CLI.hpp>
#include <QEXCore_iOS/GetCore.h>
#include <QEXCore_iOS/QEXCore.h>
#include <VelmoraCore/Core.h>

#include "CartReader.h"
#include "EventText.h"
#include "EventWatcher.h"

namespace {

using namespace std::chrono_literals;

constexpr const char* kLastEvent = "shop closed";

struct Options {
  std::string configuration;
  std::string deepLink;
  std::string messageId;
  std::string notificationId;
  unsigned logLevel = static_cast<unsigned>(QEXMobileLogLevel::debug);
};

// Prints whole lines, whichever thread they come from.
void Print(const std::string& line) {
  static std::mutex mutex;
  const std::lock_guard lock(mutex);
  std::cout << line << std::endl;
}

// Registers a listener for all events that prints each one, and tells when the last one was heard.
std::future<void> WatchEvents() {
  auto closed = std::make_shared<std::promise<void>>();
  std::future<void> closing = closed->get_future();
  const auto watcher = Storefront::MakeEventWatcher([closed](const Velmora::Event& event) {
    Print(Storefront::TextOf(event));
    if (event.GetName() == kLastEvent) closed->set_value();
  });
  GetCore()->RegisterExternalModule(
      watcher, [](Velmora::SdkError& error) { Print(std::string("refused: ") + error.what()); });
  return closing;
}

bool StartSdk() {
  auto started = std::make_shared<std::promise<void>>();
  QEXCore::start([started] { started->set_value(); });
  return started->get_future().wait_for(10s) == std::future_status::ready;
}

void CollectLaunchInformation(const Options& options) {
  QEXCore::collectLaunchInfo({{"krv_deeplink", options.deepLink},
                              {"krv_m_id", options.messageId},
                              {"krv_m_l_id", options.notificationId},
                              {"launched.by", "the shop's own key, which the SDK leaves alone"}});
}

void VisitTheShop() {
  QEXCore::lifecycleStart({{"channel", "kiosk"}});
  QEXCore::trackState("catalogue", {{"category", "shoes"}});
  QEXCore::trackAction("addToCart", {{"sku", "A-17"}, {"size", "M"}});
  // Context data are texts; the price is dropped with a warning.
  QEXCore::trackAction("checkout", {{"cart", "A-17"}, {"price", 19.90}});
  QEXCore::collectPii({{"email", "visitor@example.com"}});
  QEXCore::setPushIdentifier(Platform::Value::FromData({0x0A, 0x0B}));
  QEXCore::lifecyclePause();
}

void AskForIdentities() {
  QEXCore::getPrivacyStatus([](QEXMobilePrivacyStatus status) {
    Print("privacy status: " + std::to_string(static_cast<unsigned>(status)));
  });
  QEXCore::getSdkIdentities([](const std::optional<std::string>& identities) {
    Print("identities: " + identities.value_or("none"));
  });
}

void CloseTheShop() {
  GetCore()->DispatchEvent(
      std::make_shared<Velmora::Event>(kLastEvent, "storefront", "shop"),
      [](Velmora::SdkError& error) { Print(std::string("refused: ") + error.what()); });
}

Options ReadCommandLine(int argc, char** argv, CLI::App& app) {
  Options options;
  app.add_option("--config", options.configuration, "JSON file to configure the SDK from");
  app.add_option("--deeplink", options.deepLink, "deep link that the app was launched with");
  app.add_option("--message-id", options.messageId, "push message that launched the app");
  app.add_option("--notification-id", options.notificationId, "notification that launched the app");
  app.add_option("--log-level", options.logLevel, "0 error, 1 warning, 2 debug, 3 trace")
      ->check(CLI::Range(0U, 3U));
  app.parse(argc, argv);
  return options;
}

int Run(const Options& options) {
  QEXCore::setLogLevel(static_cast<QEXMobileLogLevel>(options.logLevel));
  std::future<void> closing = WatchEvents();
  if (!Storefront::RegisterCart()) return EXIT_FAILURE;
  if (!options.configuration.empty()) QEXCore::configureWithFileInPath(options.configuration);
  if (!StartSdk()) {
    Print("the SDK did not start within ten seconds");
    return EXIT_FAILURE;
  }
  CollectLaunchInformation(options);
  VisitTheShop();
  Storefront::PutIntoCart("A-17");
  AskForIdentities();
  CloseTheShop();
  if (closing.wait_for(10s) != std::future_status::ready) {
    Print("the last event was not heard within ten seconds");
    return EXIT_FAILURE;
  }
  Print("QEXCore " + QEXCore::extensionVersion() + ": the visit is over.");
  return EXIT_SUCCESS;
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app("A sample shop on QEXCore", "storefront");
  try {
    return Run(ReadCommandLine(argc, argv, app));
  } catch (const CLI::ParseError& error) {
    return app.exit(error);
  }
}
