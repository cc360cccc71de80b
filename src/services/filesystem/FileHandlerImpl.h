#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "QEXCore_iOS/Platform/FileHandle.h"
#include "VelmoraCore/FileHandlerInterface.h"
#include "VelmoraCore/Object.h"

namespace Velmora {

// A file by its path, as given, on the installed device. Touches nothing on disk until it is asked
// to; what is still open when the handler goes is closed with it.
class FileHandlerImpl : public Object, public virtual FileHandlerInterface {
 public:
  explicit FileHandlerImpl(std::string path);

  std::int64_t Size() override;
  ModificationTime LastModified() override;
  bool OpenForReading() override;
  bool OpenForWriting() override;
  bool MoveToOffset(std::uint64_t offset) override;
  std::uint32_t Write(std::uint32_t count, const std::uint8_t* bytes) override;
  std::uint32_t Read(std::uint32_t count, std::uint8_t* buffer) override;
  bool Close() override;

  // The same as OpenForWriting, but false, with nothing changed, when this is the file at `spared`,
  // whatever the links that lead to it.
  bool OpenForWritingUnless(const std::string& spared);

 private:
  const std::string path_;
  std::unique_ptr<Platform::FileHandle> handle_;  // null while no file is open
};

std::shared_ptr<FileHandlerInterface> CreateNativeFileHandler(const std::string& path);

}  // namespace Velmora
