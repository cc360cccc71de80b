#pragma once

#include <mutex>
#include <string>

#include "VelmoraCore/Object.h"
#include "VelmoraCore/RemoteFileInterface.h"

namespace Velmora {

// A file of the download cache, by its path. What could not be read the first time stays empty.
class NativeRemoteFile : public Object, public virtual RemoteFileInterface {
 public:
  explicit NativeRemoteFile(std::string path);

  std::string ToUri() override;
  std::string ReadJsonStringFromFile() override;

 private:
  const std::string path_;
  std::string text_;  // guarded by mutex_
  std::mutex mutex_;
  bool wasRead_ = false;  // guarded by mutex_
};

}  // namespace Velmora
