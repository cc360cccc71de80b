// A shop without a window. Each run is one visit: the shop configures and starts the SDK, fetches
// its rules, tracks what the visitor does, and ends. Log lines go to standard error, the rest to
// standard output.

#include <cstdlib>
#include <exception>
#include <iostream>
#include <memory>
#include <mutex>
#include <string>

#include <CLI/CLI.hpp>
#include <QEXCore_iOS/Platform/Host.h>
#include <QEXCore_iOS/QEXCore.h>

#include "CartReader.h"
#include "CountingLog.h"
#include "EventText.h"
#include "HubObserver.h"
#include "PreviousInstallation.h"
#include "Summary.h"
#include "Visit.h"

namespace {

struct Options {
  std::string appId;
  std::string configuration;
  std::string trust;
  Storefront::Launch launch;
  unsigned logLevel = static_cast<unsigned>(QEXMobileLogLevel::debug);
  bool isQuiet = false;
  bool leavesPreviousInstallation = false;
  bool waitsForDelivery = false;
  bool hasSummary = false;
};

// Prints whole lines, whichever thread they come from.
void Print(const std::string& line) {
  static std::mutex mutex;
  const std::lock_guard lock(mutex);
  std::cout << line << std::endl;
}

Options ReadCommandLine(int argc, char** argv, CLI::App& app) {
  Options options;
  app.add_option("--app-id", options.appId, "app id to configure the SDK for");
  app.add_option("--config", options.configuration, "JSON file to configure the SDK from");
  app.add_option("--trust", options.trust, "PEM file of an authority to trust");
  app.add_option("--deeplink", options.launch.deepLink, "deep link that launched the app");
  app.add_option("--message-id", options.launch.messageId, "push message that launched the app");
  app.add_option("--notification-id", options.launch.notificationId,
                 "notification that launched the app");
  app.add_option("--log-level", options.logLevel, "0 error, 1 warning, 2 debug, 3 trace")
      ->check(CLI::Range(0U, 3U));
  app.add_flag("--quiet", options.isQuiet, "do not print events");
  app.add_flag("--leave-previous-installation", options.leavesPreviousInstallation,
               "leave what the previous generation of the SDK left, and end");
  app.add_flag("--wait-for-delivery", options.waitsForDelivery,
               "end only when no hit waits any more");
  app.add_flag("--summary", options.hasSummary, "tell what each service did");
  app.parse(argc, argv);
  return options;
}

std::shared_ptr<const Storefront::CountingLog> InstallHost(const Options& options) {
  Platform::HostOptions hostOptions;
  hostOptions.extraTrustFile = options.trust;
  Platform::Host host = Platform::Host::CreateDefault(hostOptions);
  const auto log = std::make_shared<Storefront::CountingLog>(host.systemLog);
  host.systemLog = log;
  Platform::Host::Install(host);
  return log;
}

void TellHits(const Storefront::HitNumbers& hits) {
  Print("hits: " + std::to_string(hits.sent) + " sent during this visit, " +
        std::to_string(hits.waiting) + " wait on the device");
}

int Run(const Options& options) {
  const auto log = InstallHost(options);
  if (options.leavesPreviousInstallation) {
    Storefront::LeavePreviousInstallation();
    return EXIT_SUCCESS;
  }
  QEXCore::setLogLevel(static_cast<QEXMobileLogLevel>(options.logLevel));
  // The hub calls it until the process ends, and so longer than this function runs.
  const Storefront::HubObserver observer([isQuiet = options.isQuiet](const Velmora::Event& event) {
    if (!isQuiet) Print(Storefront::TextOf(event));
  });
  if (!Storefront::RegisterCart()) return EXIT_FAILURE;
  const Storefront::Visit visit(observer);
  if (!visit.Start(options.appId, options.configuration)) {
    Print("the SDK did not start within ten seconds");
    return EXIT_FAILURE;
  }
  if (!options.appId.empty()) visit.FetchRules();
  Storefront::Traces traces;
  traces.lifecycle = visit.Begin(options.launch);
  visit.LookAround();
  visit.BuyShoes();
  visit.Leave();
  visit.TellIdentities();
  if (options.waitsForDelivery && !visit.WaitUntilHitsAreSent()) {
    Print("hits still wait after twenty seconds");
    return EXIT_FAILURE;
  }
  traces.hits = visit.AskForHits();
  traces.logLines = log->Count();
  TellHits(traces.hits);
  const bool isComplete = !options.hasSummary || Storefront::PrintSummary(observer, traces);
  Print("QEXCore " + QEXCore::extensionVersion() + ": the visit is over.");
  return isComplete ? EXIT_SUCCESS : EXIT_FAILURE;
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app("A sample shop on QEXCore", "storefront");
  try {
    return Run(ReadCommandLine(argc, argv, app));
  } catch (const CLI::ParseError& error) {
    return app.exit(error);
  } catch (const std::exception& error) {
    std::cerr << "storefront: " << error.what() << '\n';
    return EXIT_FAILURE;
  }
}
