#include <memory>

#include "QEXCore_iOS/Platform/Host.h"
#include "platform/headless/HeadlessScreen.h"
#include "platform/linux/CurlUrlSession.h"
#include "platform/linux/GioReachability.h"
#include "platform/linux/LinuxBundle.h"
#include "platform/linux/LinuxDevice.h"
#include "platform/linux/LinuxFileManager.h"
#include "platform/linux/LinuxJsonSerialization.h"
#include "platform/linux/LinuxLocale.h"
#include "platform/linux/LinuxProcessInfo.h"
#include "platform/linux/LinuxSystemLog.h"
#include "platform/linux/LinuxTelephony.h"
#include "platform/linux/OpenSslBase64.h"
#include "platform/linux/OpenSslDigest.h"
#include "platform/linux/OpenSslUuidGenerator.h"
#include "platform/linux/SqliteUserDefaultsProvider.h"
#include "platform/linux/UriparserUrlParser.h"

namespace Platform {
namespace {

bool AllowsArbitraryLoads(const Bundle& bundle) {
  return bundle.ObjectForInfoDictionaryKey("NSAppTransportSecurity")
      .Get("NSAllowsArbitraryLoads")
      .AsBool();
}

std::shared_ptr<UrlSession> MakeUrlSession(const HostOptions& options,
                                           const std::shared_ptr<Bundle>& bundle) {
  return std::make_shared<CurlUrlSession>(
      CurlUrlSessionOptions{.extraTrustFile = options.extraTrustFile,
                            .largestBody = options.largestResponseBody,
                            .allowsCleartext = [bundle] { return AllowsArbitraryLoads(*bundle); }});
}

}  // namespace

Host Host::CreateDefault() { return CreateDefault(HostOptions()); }

Host Host::CreateDefault(const HostOptions& options) {
  const auto bundle = std::make_shared<LinuxBundle>();
  return {
      .base64 = std::make_shared<OpenSslBase64>(),
      .bundle = bundle,
      .device = std::make_shared<LinuxDevice>(),
      .digest = std::make_shared<OpenSslDigest>(),
      .fileManager = std::make_shared<LinuxFileManager>(),
      .jsonSerialization = std::make_shared<LinuxJsonSerialization>(),
      .locale = std::make_shared<LinuxLocale>(),
      .processInfo = std::make_shared<LinuxProcessInfo>(),
      .reachability = std::make_shared<GioReachability>(),
      .screen = std::make_shared<HeadlessScreen>(),
      .systemLog = std::make_shared<LinuxSystemLog>(),
      .telephony = std::make_shared<LinuxTelephony>(),
      .urlParser = std::make_shared<UriparserUrlParser>(),
      .urlSession = MakeUrlSession(options, bundle),
      .userDefaults = std::make_shared<SqliteUserDefaultsProvider>(),
      .uuidGenerator = std::make_shared<OpenSslUuidGenerator>(),
  };
}

}  // namespace Platform
