#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "VelmoraCore/DirectoryHandlerInterface.h"
#include "VelmoraCore/StreamDecoderInterface.h"
#include "services/filesystem/ZipEntryOutput.h"
#include "services/filesystem/ZipRecords.h"

namespace Velmora {

// One entry of an open archive: what its headers say, and its extraction. Shares the archive's
// file, so that entries of one archive belong to one caller at a time.
class ZipCompressedFile {
 public:
  // Reads the entry whose header in the central directory begins at `headerOffset`. Throws an
  // SdkError when a header is missing or when the two do not agree. The sizes and the checksum of
  // the central directory are the ones that count, since a local header may have none.
  ZipCompressedFile(ZipReader& reader, std::uint64_t headerOffset);

  // Writes the entry below `destination`, making missing directories on the way. Entries that only
  // the makers of archives need (see IsOSRestrictedPath) are passed over. Throws an SdkError when
  // the entry cannot be read, decoded or written, or when it is not what its header says; what was
  // written stays.
  //
  // The name is used as it stands: nothing confines it to the destination. One that leads to the
  // archive itself, by whatever links, counts as a file that cannot be opened for writing.
  void ExtractFile(const std::string& destination) const;

  // What the headers say. Texts are bytes, of whatever encoding.
  const std::string& Name() const { return central_.name; }
  const ZipCentralHeader& CentralHeader() const { return central_; }
  const ZipLocalHeader& LocalHeader() const { return local_; }
  const std::optional<ZipDataDescriptor>& DataDescriptor() const { return descriptor_; }

  // Where the header of the central directory, and where the data begin in the archive.
  std::uint64_t HeaderOffset() const { return headerOffset_; }
  std::uint64_t DataOffset() const { return dataOffset_; }

  // An empty entry whose name ends in "/" or "\".
  bool IsDirectory() const;

  std::uint32_t CompressedSize() const { return central_.compressedSize; }
  std::uint32_t UncompressedSize() const { return central_.uncompressedSize; }

  // True for resource forks and folder settings.
  bool IsOSRestrictedPath() const;

  // True when the entry is neither encrypted nor patched, has a method that can be decoded, starts
  // on the first disk and needs no 64-bit sizes. Extraction does not ask.
  bool IsConforming() const;

  // For people; nothing depends on the texts.
  std::string CompressionMethod() const;
  std::string Creator() const;
  std::string LastModified() const;
  std::uint16_t ZipVersionRequired() const { return central_.versionNeeded; }

 private:
  void CompareHeaders() const;
  std::shared_ptr<FileHandlerInterface> OpenOutput(DirectoryHandlerInterface& directory) const;
  std::shared_ptr<StreamDecoderInterface> MakeDecoder() const;
  void Decode(StreamDecoderInterface& decoder, ZipEntryOutput& output) const;

  std::string archivePath_;
  std::shared_ptr<FileHandlerInterface> archive_;
  std::uint64_t headerOffset_;
  ZipCentralHeader central_;
  ZipLocalHeader local_;
  std::uint64_t dataOffset_;
  std::optional<ZipDataDescriptor> descriptor_;
};

}  // namespace Velmora
