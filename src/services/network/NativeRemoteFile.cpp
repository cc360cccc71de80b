#include "services/network/NativeRemoteFile.h"

#include <utility>

#include "QEXCore_iOS/Platform/Host.h"

namespace Velmora {

NativeRemoteFile::NativeRemoteFile(std::string path) : path_(std::move(path)) {}

std::string NativeRemoteFile::ToUri() { return path_; }

std::string NativeRemoteFile::ReadJsonStringFromFile() {
  // Held while the file is read, so that those who come meanwhile wait for it and none reads twice.
  const std::lock_guard lock(mutex_);
  if (!wasRead_) {
    text_ = Platform::Host::Current()->fileManager->ReadText(path_, nullptr).value_or("");
    wasRead_ = true;
  }
  return text_;
}

}  // namespace Velmora
