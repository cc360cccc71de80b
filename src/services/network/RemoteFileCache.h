#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "QEXCore_iOS/Platform/Base64.h"
#include "QEXCore_iOS/Platform/Digest.h"
#include "QEXCore_iOS/Platform/FileManager.h"
#include "VelmoraCore/HttpConnectionInterface.h"
#include "VelmoraCore/RemoteFileManagerServiceInterface.h"

namespace Velmora {

// The folder in which downloaded files are kept, one for each URL, on the device that is installed
// when it is made. Other processes may use the same folder: a file is always whole, but may be gone
// by the time that it is opened.
//
// Safe from any thread, without a lock: of two downloads of one URL the later one wins, or leaves
// both copies.
class RemoteFileCache {
 public:
  using FileResult = RemoteFileManagerServiceInterface::FileResult;

  // `directory` need not be there yet.
  RemoteFileCache(std::string directory, std::string pathSeparator);

  // The path of the cached copy; nothing when there is none. Logs a warning when there are several,
  // and gives the first that the directory lists.
  std::optional<std::string> Find(const std::string& url, const std::string& subFolder) const;

  // The cached copy, or the error "remotefilemanager.cache_failed".
  FileResult FileFromCache(const std::string& url, const std::string& subFolder) const;

  // What a download came to: stores a new body, or falls back on `cached`, the copy found before.
  FileResult Process(const std::shared_ptr<HttpConnectionInterface>& connection,
                     const std::string& url, const std::string& subFolder,
                     const std::optional<std::string>& cached) const;

  // Deletes every entry of the sub-folder but those of `urls`.
  void DeleteAllBut(const std::string& subFolder, const std::deque<std::string>& urls) const;

 private:
  std::string FolderOf(const std::string& subFolder) const;
  std::string DigestOf(const std::string& url) const;
  std::vector<std::string> EntriesOf(const std::string& folder, std::string_view digest) const;
  FileResult Store(HttpConnectionInterface& connection, const std::string& url,
                   const std::string& subFolder, const std::optional<std::string>& cached) const;
  bool Write(HttpConnectionInterface& connection, const std::string& subFolder,
             const std::string& digest, const std::string& path) const;
  bool EnsureDirectory(const std::string& path) const;
  void DeleteEntries(const std::string& folder, const std::string& digest) const;

  const std::string directory_;
  const std::string pathSeparator_;
  const std::shared_ptr<Platform::FileManager> fileManager_;
  const std::shared_ptr<Platform::Digest> digest_;
  const std::shared_ptr<Platform::Base64> base64_;
};

}  // namespace Velmora
