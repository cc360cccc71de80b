#pragma once

#include <locale>
#include <memory>
#include <string>

#include "VelmoraCore/ConnectionStatus.h"
#include "VelmoraCore/DisplayInformationInterface.h"
#include "VelmoraCore/Export.h"
#include "VelmoraCore/Object.h"

namespace Velmora {

// What is known about the application, the device and the system. May be called on any thread;
// never throws. A text that is not known is empty.
class VELMORA_CORE_API SystemInfoServiceInterface : public virtual ObjectInterface {
 public:
  ~SystemInfoServiceInterface() override;

  // Directories, without a separator at the end.
  virtual std::string GetApplicationBaseDir() const = 0;
  virtual std::string GetApplicationCacheDir() const = 0;

  // The text of a file packaged with the application; empty when there is none.
  virtual std::string GetAsset(const std::string& fileName) const = 0;

  // A value of the application's information dictionary, as text.
  virtual std::string GetProperty(const std::string& key) const = 0;

  virtual std::string GetApplicationName() const = 0;

  // The build number, and the version that people see.
  virtual std::string GetApplicationVersion() const = 0;
  virtual std::string GetApplicationVersionCode() const = 0;

  // The user's locale.
  virtual std::locale GetActiveLocale() const = 0;

  // A new snapshot of the main screen on every call.
  virtual std::shared_ptr<DisplayInformationInterface> GetDisplayInformation() const = 0;

  virtual std::string GetOperatingSystemName() const = 0;
  virtual std::string GetCanonicalPlatformName() const = 0;

  // The calling thread's stack, one line per frame.
  virtual std::string GetCurrentStackTrace() const = 0;

  virtual std::string GetOperatingSystemVersion() const = 0;

  // The hardware model.
  virtual std::string GetDeviceName() const = 0;

  virtual std::string GetDeviceBuildId() const = 0;
  virtual std::string GetMobileCarrierName() const = 0;

  // "Application" or "Extension".
  virtual std::string GetRunMode() const = 0;

  virtual ConnectionStatus GetNetworkConnectionStatus() const = 0;
  virtual std::string GetSdkVersion() const = 0;
  virtual std::string GetDefaultUserAgent() const = 0;

  // Names the calling thread for debuggers. A name too long for the system is cut.
  virtual void SetCurrentThreadName(const std::string& name) const = 0;
};

}  // namespace Velmora
