#pragma once

#include <chrono>
#include <deque>
#include <functional>
#include <memory>
#include <string>

#include "VelmoraCore/Expected.h"
#include "VelmoraCore/Export.h"
#include "VelmoraCore/Object.h"
#include "VelmoraCore/RemoteFileInterface.h"
#include "VelmoraCore/SdkError.h"

namespace Velmora {

// Downloads files into a cache and keeps them fresh. May be called on any thread. `subFolder` lies
// in the cache directory; empty means the cache directory itself.
//
// An error in a result has the code "remotefilemanager.request_failed" (the message is the HTTP
// status), "remotefilemanager.cache_failed" (not in the cache) or
// "std.logic_error.invalid_argument" (no connection came about).
class VELMORA_CORE_API RemoteFileManagerServiceInterface : public virtual ObjectInterface {
 public:
  using FileResult = Expected<std::shared_ptr<RemoteFileInterface>, SdkError>;
  using FileCallback = std::function<void(const FileResult& result)>;

  ~RemoteFileManagerServiceInterface() override;

  // Takes no more asynchronous requests and waits up to `timeout` for those taken. True when all of
  // them were started.
  virtual bool Dispose(std::chrono::milliseconds timeout) = 0;

  // Returns at once. `callback` is called on a thread of the services; never when the URL is
  // invalid, when the transport fails, or after Dispose.
  virtual void GetFileAsync(const std::string& url, const std::string& subFolder,
                            FileCallback callback) = 0;

  // Waits for the file. Throws an SdkError "std.logic_error.invalid_argument" for a text that is no
  // URL.
  virtual FileResult GetFileSync(const std::string& url, const std::string& subFolder) = 0;

  // What the cache holds, without asking the network.
  virtual FileResult GetFileFromCache(const std::string& url, const std::string& subFolder) = 0;

  // Deletes every file of the sub-folder but those of `urls`. What cannot be deleted is logged.
  virtual void DeleteCachedDataNotInList(const std::string& subFolder,
                                         const std::deque<std::string>& urls) = 0;
};

}  // namespace Velmora
