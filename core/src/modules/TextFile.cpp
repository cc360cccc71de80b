#include "modules/TextFile.h"

#include "VelmoraCore/TryCatch.h"

namespace Velmora::TextFile {
namespace {

constexpr const char* kTooLong = "it is too long";

bool IsTooLong(FileSystemServiceInterface& files, const std::string& path, std::int64_t maxBytes) {
  const std::shared_ptr<FileHandlerInterface> handler = files.CreateFileHandler(path);
  return handler != nullptr && handler->Size() > maxBytes;
}

}  // namespace

std::optional<std::string> Read(FileSystemServiceInterface& files, const std::string& path,
                                std::int64_t maxBytes, std::string& problem) {
  std::optional<std::string> text;
  TryCatch(
      [&] {
        if (files.IsDirectory(path)) {
          problem = "it is a directory";
        } else if (IsTooLong(files, path, maxBytes)) {
          problem = kTooLong;
        } else {
          text = files.ReadStringFromFile(path);
        }
      },
      [&](SdkError& error) { problem = error.GetMessage(); });
  // A file that is not a plain one may hold more than its size tells.
  if (text && text->size() > static_cast<std::size_t>(maxBytes)) {
    problem = kTooLong;
    text = std::nullopt;
  }
  return text;
}

}  // namespace Velmora::TextFile
