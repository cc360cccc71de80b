#pragma once

#include <memory>
#include <string>

#include "QEXCore_iOS/Platform/UrlSession.h"
#include "VelmoraCore/NetworkServiceInterface.h"
#include "VelmoraCore/Object.h"
#include "VelmoraCore/SystemInfoServiceInterface.h"

namespace Velmora {

// Requests by the URL session of the device that is installed when the service is made. Requests
// under way go on without the service. All callbacks come on the session's one thread: one that
// waits for another request waits in vain. Why a request came to nothing is told by a debug line
// alone.
class NativeNetworkService : public Object, public virtual NetworkServiceInterface {
 public:
  // Throws an SdkError "platform_services.missing_service" without a system information service.
  explicit NativeNetworkService(
      const std::shared_ptr<SystemInfoServiceInterface>& systemInfoService);

  std::shared_ptr<HttpConnectionInterface> ConnectUrl(
      const std::string& url, HttpCommandType command, const std::string& body,
      const std::map<std::string, std::string>& headers, std::chrono::seconds connectTimeout,
      std::chrono::seconds readTimeout) override;

  void ConnectUrlAsync(const std::string& url, HttpCommandType command, const std::string& body,
                       const std::map<std::string, std::string>& headers,
                       std::chrono::seconds connectTimeout, std::chrono::seconds readTimeout,
                       ConnectionCallback callback) override;

 private:
  const std::string userAgentHeader_ = "User-Agent";
  const std::shared_ptr<SystemInfoServiceInterface> systemInfoService_;
  const std::shared_ptr<Platform::UrlSession> session_;
};

std::shared_ptr<NetworkServiceInterface> CreateNativeNetworkService(
    const std::shared_ptr<SystemInfoServiceInterface>& systemInfoService);

}  // namespace Velmora
