#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <string>

#include "VelmoraCore/Export.h"
#include "VelmoraCore/HttpCommandType.h"
#include "VelmoraCore/HttpConnectionInterface.h"
#include "VelmoraCore/Object.h"

namespace Velmora {

// Sends HTTPS requests. May be called on any thread.
//
// Both operations throw an SdkError before anything is sent: "std.logic_error.invalid_argument" for
// a text that is no URL or has no "https" in it, "network.unsupported_http_command_type" for a
// command other than GET and POST. A body goes out with POST only. `headers` are set in key order
// and replace the service's own "User-Agent". An HTTP error status is a response like any other.
class VELMORA_CORE_API NetworkServiceInterface : public virtual ObjectInterface {
 public:
  using ConnectionCallback =
      std::function<void(const std::shared_ptr<HttpConnectionInterface>& connection)>;

  ~NetworkServiceInterface() override;

  // Waits for the response, as long as both timeouts together; an empty pointer when none came. The
  // transfer as a whole may take `connectTimeout`, and `readTimeout` may pass between two packets.
  virtual std::shared_ptr<HttpConnectionInterface> ConnectUrl(
      const std::string& url, HttpCommandType command, const std::string& body,
      const std::map<std::string, std::string>& headers, std::chrono::seconds connectTimeout,
      std::chrono::seconds readTimeout) = 0;

  // Returns at once. `callback` is called on a thread of the service when the response has arrived,
  // and never when the transport fails. It may be empty.
  virtual void ConnectUrlAsync(const std::string& url, HttpCommandType command,
                               const std::string& body,
                               const std::map<std::string, std::string>& headers,
                               std::chrono::seconds connectTimeout,
                               std::chrono::seconds readTimeout, ConnectionCallback callback) = 0;
};

}  // namespace Velmora
