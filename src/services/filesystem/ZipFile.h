#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "services/filesystem/ZipCompressedFile.h"
#include "services/filesystem/ZipReader.h"
#include "services/filesystem/ZipRecords.h"

namespace Velmora {

// A zip archive, opened for reading. Belongs to one caller at a time; the file closes with the
// object and with the last of its entries. The archive itself is never changed.
//
// Of each entry only its place is kept, so that memory stays small whatever the archive holds:
// Entry reads its headers anew.
class ZipFile {
 public:
  // Opens the archive, reads its directory and checks every entry's headers. Throws an SdkError:
  // "compressed-file.read-failed" for a file that cannot be opened, is larger than 256 MiB or ends
  // too soon, "compressed-file.corrupted" for one that is no archive, is damaged, is spread over
  // several disks, needs ZIP64 or has more than 10,000 entries.
  explicit ZipFile(const std::string& path);

  const ZipEndRecord& EndRecord() const { return endRecord_; }

  std::size_t EntryCount() const { return headerOffsets_.size(); }

  // The entries in the order of the directory; `index` is below EntryCount(). Throws an SdkError
  // when the archive has been damaged since it was opened.
  ZipCompressedFile Entry(std::size_t index);

  // False when an entry cannot be expected to unpack. Such entries stay in the list.
  bool IsConforming() const { return isConforming_; }

 private:
  static ZipReader Open(const std::string& path);
  void RefuseUnsupported() const;
  void LoadEntries();

  ZipReader reader_;
  const ZipEndRecord endRecord_;
  std::vector<std::uint64_t> headerOffsets_;
  bool isConforming_ = true;
};

}  // namespace Velmora
