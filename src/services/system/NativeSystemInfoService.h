#pragma once

#include <array>
#include <cstdint>
#include <locale>
#include <memory>
#include <string>

#include "VelmoraCore/Object.h"
#include "VelmoraCore/SystemInfoServiceInterface.h"

namespace Velmora {

// Tells the core about the application and its device. May be called on any thread; a device that
// fails leaves texts empty and the carrier "Unknown"; the network counts as not connected when it
// cannot be looked at, and as unknown when its flags cannot be read.
//
// The system's name and version, the run mode and the user agent are found out once for the
// process and stay as they were first read.
class NativeSystemInfoService : public Object, public virtual SystemInfoServiceInterface {
 public:
  NativeSystemInfoService();

  std::string GetApplicationBaseDir() const override;

  // The container of the application group where one is set and has one, else the caches
  // directory; made if it is missing.
  std::string GetApplicationCacheDir() const override;

  std::string GetAsset(const std::string& fileName) const override;

  // Empty for a value that is no text.
  std::string GetProperty(const std::string& key) const override;

  std::string GetApplicationName() const override;
  std::string GetApplicationVersion() const override;
  std::string GetApplicationVersionCode() const override;
  std::locale GetActiveLocale() const override;
  std::shared_ptr<DisplayInformationInterface> GetDisplayInformation() const override;
  std::string GetOperatingSystemName() const override;
  std::string GetCanonicalPlatformName() const override;

  // Each frame after a line end.
  std::string GetCurrentStackTrace() const override;

  std::string GetOperatingSystemVersion() const override;
  std::string GetDeviceName() const override;
  std::string GetDeviceBuildId() const override;
  std::string GetMobileCarrierName() const override;
  std::string GetRunMode() const override;
  ConnectionStatus GetNetworkConnectionStatus() const override;
  std::string GetSdkVersion() const override;
  std::string GetDefaultUserAgent() const override;

  // Keeps the first 15 bytes, less a character that this would cut in two.
  void SetCurrentThreadName(const std::string& name) const override;

 private:
  std::string BuildUserAgent() const;

  const std::string sdkVersion_;
  [[maybe_unused]] const std::array<std::uintptr_t, 2> reserved_{};
};

std::shared_ptr<SystemInfoServiceInterface> CreateNativeSystemInfoService();

}  // namespace Velmora
