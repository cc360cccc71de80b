#pragma once

#include <functional>
#include <locale>
#include <memory>
#include <string>
#include <utility>

#include "VelmoraCore/SystemInfoServiceInterface.h"

namespace Velmora {

// Knows nothing; hands the names that threads give themselves to a function, on those threads.
class FakeSystemInfoService : public Object, public virtual SystemInfoServiceInterface {
 public:
  explicit FakeSystemInfoService(std::function<void(const std::string&)> onThreadName)
      : onThreadName_(std::move(onThreadName)) {}

  void SetCurrentThreadName(const std::string& name) const override { onThreadName_(name); }

  std::string GetApplicationBaseDir() const override { return {}; }
  std::string GetApplicationCacheDir() const override { return {}; }
  std::string GetAsset(const std::string&) const override { return {}; }
  std::string GetProperty(const std::string&) const override { return {}; }
  std::string GetApplicationName() const override { return {}; }
  std::string GetApplicationVersion() const override { return {}; }
  std::string GetApplicationVersionCode() const override { return {}; }
  std::locale GetActiveLocale() const override { return std::locale::classic(); }
  std::shared_ptr<DisplayInformationInterface> GetDisplayInformation() const override {
    return nullptr;
  }
  std::string GetOperatingSystemName() const override { return {}; }
  std::string GetCanonicalPlatformName() const override { return {}; }
  std::string GetCurrentStackTrace() const override { return {}; }
  std::string GetOperatingSystemVersion() const override { return {}; }
  std::string GetDeviceName() const override { return {}; }
  std::string GetDeviceBuildId() const override { return {}; }
  std::string GetMobileCarrierName() const override { return {}; }
  std::string GetRunMode() const override { return {}; }
  ConnectionStatus GetNetworkConnectionStatus() const override { return ConnectionStatus::Unknown; }
  std::string GetSdkVersion() const override { return {}; }
  std::string GetDefaultUserAgent() const override { return {}; }

 private:
  std::function<void(const std::string&)> onThreadName_;
};

}  // namespace Velmora
