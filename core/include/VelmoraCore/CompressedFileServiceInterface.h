#pragma once

#include <string>

#include "VelmoraCore/CompressedFileType.h"
#include "VelmoraCore/Export.h"
#include "VelmoraCore/Object.h"

namespace Velmora {

// Unpacks archives. May be called on any thread.
class VELMORA_CORE_API CompressedFileServiceInterface : public virtual ObjectInterface {
 public:
  ~CompressedFileServiceInterface() override;

  // Writes every entry of the archive at `archivePath` below `destinationDirectory`, which is made
  // where it is missing, and returns true. False for a `type` that is not served. Throws an
  // SdkError with a "compressed-file." code when the archive cannot be read or is damaged, or when
  // an entry cannot be written; entries written before stay.
  //
  // Entry names are not confined to the destination: unpack only archives that are trusted. The
  // archive itself is never changed, whatever the names.
  virtual bool Extract(const std::string& archivePath, CompressedFileType type,
                       const std::string& destinationDirectory) = 0;
};

}  // namespace Velmora
