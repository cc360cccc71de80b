#pragma once

#include <memory>
#include <string>

#include "VelmoraCore/CompressedFileServiceInterface.h"
#include "VelmoraCore/Object.h"

namespace Velmora {

// Unpacks zip archives. Keeps nothing between calls.
class NativeCompressedFileService : public Object, public virtual CompressedFileServiceInterface {
 public:
  NativeCompressedFileService();

  bool Extract(const std::string& archivePath, CompressedFileType type,
               const std::string& destinationDirectory) override;
};

std::shared_ptr<CompressedFileServiceInterface> CreateNativeCompressedFileService();

}  // namespace Velmora
