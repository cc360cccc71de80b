#include "services/filesystem/NativeCompressedFileService.h"

#include "services/filesystem/ZipFile.h"

namespace Velmora {

NativeCompressedFileService::NativeCompressedFileService()
    : Object("NativeCompressedFileService") {}

bool NativeCompressedFileService::Extract(const std::string& archivePath, CompressedFileType type,
                                          const std::string& destinationDirectory) {
  if (type != CompressedFileType::Zip) return false;
  ZipFile archive(archivePath);
  for (std::size_t index = 0; index < archive.EntryCount(); ++index) {
    archive.Entry(index).ExtractFile(destinationDirectory);
  }
  return true;
}

std::shared_ptr<CompressedFileServiceInterface> CreateNativeCompressedFileService() {
  return std::make_shared<NativeCompressedFileService>();
}

}  // namespace Velmora
