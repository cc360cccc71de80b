#include "support/FakeHost.h"

#include "platform/linux/LinuxJsonSerialization.h"
#include "platform/linux/OpenSslBase64.h"
#include "platform/linux/OpenSslDigest.h"
#include "platform/linux/OpenSslUuidGenerator.h"
#include "platform/linux/UriparserUrlParser.h"

namespace TestSupport {

FakeHost::FakeHost() : former_(Platform::Host::Current()) { Platform::Host::Install(Copy()); }

FakeHost::~FakeHost() { Platform::Host::Install(*former_); }

Platform::Host FakeHost::Copy() const {
  return {
      .base64 = std::make_shared<Platform::OpenSslBase64>(),
      .bundle = bundle,
      .device = device,
      .digest = std::make_shared<Platform::OpenSslDigest>(),
      .fileManager = fileManager,
      .jsonSerialization = std::make_shared<Platform::LinuxJsonSerialization>(),
      .locale = locale,
      .processInfo = processInfo,
      .reachability = reachability,
      .screen = screen,
      .systemLog = systemLog,
      .telephony = telephony,
      .urlParser = std::make_shared<Platform::UriparserUrlParser>(),
      .urlSession = urlSession,
      .userDefaults = userDefaults,
      .uuidGenerator = std::make_shared<Platform::OpenSslUuidGenerator>(),
  };
}

}  // namespace TestSupport
