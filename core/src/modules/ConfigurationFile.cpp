#include "modules/ConfigurationFile.h"

#include "VelmoraCore/Log.h"
#include "VelmoraCore/TryCatch.h"
#include "modules/JsonText.h"

namespace Velmora::ConfigurationFile {
namespace {

constexpr const char* kTooLong = "it is too long";

bool IsTooLong(FileSystemServiceInterface& files, const std::string& path) {
  const std::shared_ptr<FileHandlerInterface> handler = files.CreateFileHandler(path);
  return handler != nullptr && handler->Size() > kMaxBytes;
}

// Says in `problem` why there is no text.
std::string ReadText(FileSystemServiceInterface& files, const std::string& path,
                     std::string& problem) {
  std::string text;
  TryCatch(
      [&] {
        if (files.IsDirectory(path)) {
          problem = "it is a directory";
        } else if (IsTooLong(files, path)) {
          problem = kTooLong;
        } else {
          text = files.ReadStringFromFile(path);
          // A file that is not a plain one may hold more than its size tells.
          if (text.size() > static_cast<std::size_t>(kMaxBytes)) problem = kTooLong;
        }
      },
      [&](SdkError& error) { problem = error.GetMessage(); });
  return text;
}

std::optional<VariantMap> ReadOrTell(const PlatformServicesInterface& services,
                                     const std::string& path, std::string& problem) {
  const std::shared_ptr<FileSystemServiceInterface> files = services.GetFileSystemService();
  if (path.empty() || files == nullptr || services.GetJsonUtilityService() == nullptr) {
    problem = path.empty()       ? "the path is empty"
              : files == nullptr ? "there is no file system service"
                                 : "there is no JSON service";
    return std::nullopt;
  }
  const std::string text = ReadText(*files, path, problem);
  if (!problem.empty()) return std::nullopt;
  std::optional<VariantMap> members = JsonText::Read(services, text);
  if (!members.has_value()) problem = "it does not hold a JSON object";
  return members;
}

}  // namespace

std::optional<VariantMap> Read(const PlatformServicesInterface& services, const std::string& path) {
  std::string problem;
  std::optional<VariantMap> members = ReadOrTell(services, path, problem);
  if (!members.has_value()) {
    Log::Error("Configuration", "the configuration file \"%s\" cannot be used: %s", path.c_str(),
               problem.c_str());
  }
  return members;
}

}  // namespace Velmora::ConfigurationFile
