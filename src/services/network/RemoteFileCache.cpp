#include "services/network/RemoteFileCache.h"

#include <algorithm>
#include <limits>
#include <set>
#include <utility>

#include "QEXCore_iOS/Platform/Error.h"
#include "QEXCore_iOS/Platform/Host.h"
#include "VelmoraCore/ErrorCodes.h"
#include "VelmoraCore/HttpConnectionConstants.h"
#include "VelmoraCore/Log.h"
#include "VelmoraCore/SdkError.h"
#include "VelmoraCore/StringUtils.h"
#include "services/network/NativeRemoteFile.h"
#include "services/network/RemoteFileLog.h"
#include "services/network/RemoteFileValues.h"

namespace Velmora {
namespace {

constexpr const char* kSourceLocation = "src/services/network/NativeRemoteFileManagerService";

SdkError CacheError(const char* code, std::string message, int line) {
  return {code, std::move(message), DebugInfo(kSourceLocation, line)};
}

SdkError StatusError(std::int32_t status, int line) {
  return CacheError(ErrorCodes::kRemoteFileManagerRequestFailed, StringUtils::ToString(status),
                    line);
}

RemoteFileCache::FileResult FileAt(const std::string& path) {
  return RemoteFileCache::FileResult(std::make_shared<NativeRemoteFile>(path));
}

std::string PathIn(const std::string& folder, const std::string& name) {
  std::string path = folder;
  path += '/';
  path += name;
  return path;
}

bool IsStored(std::int32_t status) {
  return status == HttpConnectionConstants::HTTP_OK ||
         status == HttpConnectionConstants::HTTP_REQUESTED_RANGE_NOT_SATISFIABLE;
}

// The body, cut to what a signed 32-bit number can tell of its length; nothing where that comes out
// below zero.
std::optional<std::string> BodyOf(HttpConnectionInterface& connection) {
  const auto data = connection.GetResponseRawData();
  const std::uint64_t size = data->GetSize();
  if (size > std::numeric_limits<std::int32_t>::max()) {
    Log::Warning(kRemoteFileLogTag, "Data size > standard int");
  }
  const auto length = static_cast<std::int32_t>(static_cast<std::uint32_t>(size));
  if (length < 0) return std::nullopt;
  std::string body(static_cast<std::size_t>(length), '\0');
  data->GetData(body.size(), reinterpret_cast<std::uint8_t*>(body.data()));
  return body;
}

}  // namespace

RemoteFileCache::RemoteFileCache(std::string directory, std::string pathSeparator)
    : directory_(std::move(directory)),
      pathSeparator_(std::move(pathSeparator)),
      fileManager_(Platform::Host::Current()->fileManager),
      digest_(Platform::Host::Current()->digest),
      base64_(Platform::Host::Current()->base64) {}

std::string RemoteFileCache::FolderOf(const std::string& subFolder) const {
  return subFolder.empty() ? directory_ : directory_ + pathSeparator_ + subFolder;
}

std::string RemoteFileCache::DigestOf(const std::string& url) const {
  const auto digest = digest_->Sha256(url);
  const std::string text =
      base64_->Encode({reinterpret_cast<const char*>(digest.data()), digest.size()});
  return StringUtils::Replace(text, "/", "_");
}

std::vector<std::string> RemoteFileCache::EntriesOf(const std::string& folder,
                                                    std::string_view digest) const {
  std::vector<std::string> names;
  for (auto& entry : fileManager_->ContentsOfDirectory(folder, nullptr)) {
    if (entry.name.starts_with(digest)) names.push_back(std::move(entry.name));
  }
  return names;
}

std::optional<std::string> RemoteFileCache::Find(const std::string& url,
                                                 const std::string& subFolder) const {
  const std::string folder = FolderOf(subFolder);
  const std::vector<std::string> names = EntriesOf(folder, DigestOf(url));
  if (names.empty()) return std::nullopt;
  if (names.size() > 1) Log::Warning(kRemoteFileLogTag, "Multiple copies of URL in cache!");
  return PathIn(folder, names.front());
}

RemoteFileCache::FileResult RemoteFileCache::FileFromCache(const std::string& url,
                                                           const std::string& subFolder) const {
  if (const auto cached = Find(url, subFolder)) return FileAt(*cached);
  return CacheError(ErrorCodes::kRemoteFileManagerCacheFailed, "URL not cached", __LINE__);
}

RemoteFileCache::FileResult RemoteFileCache::Process(
    const std::shared_ptr<HttpConnectionInterface>& connection, const std::string& url,
    const std::string& subFolder, const std::optional<std::string>& cached) const {
  if (!connection) {
    return CacheError(ErrorCodes::kInvalidArgument, "Invalid connection interface", __LINE__);
  }
  const std::int32_t status = connection->GetResponseCode();
  if (status == HttpConnectionConstants::HTTP_NOT_FOUND) return StatusError(status, __LINE__);
  if (IsStored(status)) return Store(*connection, url, subFolder, cached);
  if (cached) return FileAt(*cached);
  return StatusError(status, __LINE__);
}

RemoteFileCache::FileResult RemoteFileCache::Store(HttpConnectionInterface& connection,
                                                   const std::string& url,
                                                   const std::string& subFolder,
                                                   const std::optional<std::string>& cached) const {
  const std::string extension =
      CacheFileExtension(connection.GetResponsePropertyValue("Last-Modified"),
                         connection.GetResponsePropertyValue("ETag"), url);
  const std::string digest = DigestOf(url);
  const std::string path = FolderOf(subFolder) + pathSeparator_ + digest + "." + extension;
  if (Write(connection, subFolder, digest, path)) return FileAt(path);
  return FileAt(cached.value_or(""));
}

bool RemoteFileCache::Write(HttpConnectionInterface& connection, const std::string& subFolder,
                            const std::string& digest, const std::string& path) const {
  const std::string folder = FolderOf(subFolder);
  if (!EnsureDirectory(directory_) || (!subFolder.empty() && !EnsureDirectory(folder))) {
    return false;
  }
  // Before the new one is written: a write that fails leaves no copy at all, by design.
  DeleteEntries(folder, digest);
  Platform::Error error("", 0, "The length of the data is out of range.");
  const auto body = BodyOf(connection);
  if (body && fileManager_->WriteFile(path, *body, &error)) return true;
  Log::Error(kRemoteFileLogTag, "Unable to write file to cache (%s)",
             error.LocalizedDescription().c_str());
  return false;
}

bool RemoteFileCache::EnsureDirectory(const std::string& path) const {
  const Platform::FileType type = fileManager_->TypeOfItem(path);
  if (type == Platform::FileType::Directory) return true;
  if (type != Platform::FileType::Missing) {
    Log::Error(kRemoteFileLogTag, "Unable to create directory, it's a file!");
    return false;
  }
  Platform::Error error;
  if (fileManager_->CreateDirectory(path, &error)) return true;
  Log::Error(kRemoteFileLogTag, "Unable to create directory (%s)",
             error.LocalizedDescription().c_str());
  return false;
}

void RemoteFileCache::DeleteEntries(const std::string& folder, const std::string& digest) const {
  for (const std::string& name : EntriesOf(folder, digest)) {
    const std::string path = PathIn(folder, name);
    Platform::Error error;
    if (fileManager_->RemoveItem(path, &error)) continue;
    Log::Warning(kRemoteFileLogTag, "Unable to delete %s (%s)", path.c_str(),
                 error.LocalizedDescription().c_str());
  }
}

void RemoteFileCache::DeleteAllBut(const std::string& subFolder,
                                   const std::deque<std::string>& urls) const {
  const std::string folder = FolderOf(subFolder);
  const auto entries = fileManager_->ContentsOfDirectory(folder, nullptr);
  if (entries.empty()) {
    Log::Trace(kRemoteFileLogTag, "Nothing to be removed in cache folder %s", folder.c_str());
    return;
  }
  std::set<std::string> kept;
  for (const std::string& url : urls) kept.insert(DigestOf(url));
  for (const auto& entry : entries) {
    if (kept.contains(entry.name.substr(0, entry.name.rfind('.')))) continue;
    const std::string path = PathIn(folder, entry.name);
    Platform::Error error;
    if (fileManager_->RemoveItem(path, &error)) continue;
    Log::Debug(kRemoteFileLogTag, "Unable to delete %s (%s)", path.c_str(),
               error.LocalizedDescription().c_str());
  }
}

}  // namespace Velmora
