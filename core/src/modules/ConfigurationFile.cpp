#include "modules/ConfigurationFile.h"

#include "VelmoraCore/Log.h"
#include "modules/JsonText.h"
#include "modules/TextFile.h"

namespace Velmora::ConfigurationFile {
namespace {

std::optional<VariantMap> ReadOrTell(const PlatformServicesInterface& services,
                                     const std::string& path, std::string& problem) {
  const std::shared_ptr<FileSystemServiceInterface> files = services.GetFileSystemService();
  if (path.empty() || files == nullptr || services.GetJsonUtilityService() == nullptr) {
    problem = path.empty()       ? "the path is empty"
              : files == nullptr ? "there is no file system service"
                                 : "there is no JSON service";
    return std::nullopt;
  }
  const std::optional<std::string> text = TextFile::Read(*files, path, kMaxBytes, problem);
  if (!text.has_value()) return std::nullopt;
  std::optional<VariantMap> members = JsonText::Read(services, *text);
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
