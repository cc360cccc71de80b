#include "modules/RulesFolder.h"

#include <algorithm>
#include <set>
#include <utility>

#include "VelmoraCore/Log.h"
#include "VelmoraCore/TryCatch.h"
#include "modules/FolderTree.h"
#include "modules/JsonText.h"
#include "modules/TextFile.h"

namespace Velmora::RulesFolder {
namespace {

using Problem = std::string;

constexpr const char* kLogTag = "Rules";
constexpr const char* kRoot = "/velmorarules";
constexpr const char* kRulesFile = "rules.json";
constexpr std::int64_t kMaxBytes = std::int64_t{1024} * 1024;

bool IsName(const std::string& folder) {
  return !folder.empty() &&
         folder.find_first_not_of("0123456789abcdefABCDEF-") == std::string::npos;
}

// The file that a consequence shows; an empty pointer when it shows none.
const std::string* FileOf(const RuleConsequence& consequence) {
  const auto* message = std::get_if<MessageConsequence>(&consequence);
  return message == nullptr || message->html.empty() ? nullptr : &message->html;
}

// The name of a file that the rule needs and that is not there; empty when there is none.
std::string MissingFile(const Rule& rule, const std::set<std::string>& files) {
  for (const RuleConsequence& consequence : rule.consequences) {
    const std::string* const file = FileOf(consequence);
    if (file != nullptr && !files.contains(*file)) return *file;
  }
  return {};
}

void LeaveOutRulesWithoutTheirFiles(RuleSet& rules, const std::vector<std::string>& names) {
  const std::set<std::string> files(names.begin(), names.end());
  std::erase_if(rules, [&](const Rule& rule) {
    const std::string missing = MissingFile(rule, files);
    if (missing.empty()) return false;
    Log::Warning(kLogTag, "the rule \"%s\" is not used: there is no file \"%s\"", rule.id.c_str(),
                 missing.c_str());
    return true;
  });
}

}  // namespace

std::string Root(const PlatformServicesInterface& services) {
  return services.GetSystemInfoService()->GetApplicationCacheDir() + kRoot;
}

std::string PathOf(const PlatformServicesInterface& services, const std::string& folder) {
  return IsName(folder) ? Root(services) + '/' + folder : std::string();
}

std::string FreshName(const PlatformServicesInterface& services) {
  return services.GetCryptoService()->GetRandomUuid()->GetString();
}

Expected<InstalledRules, std::string> Load(const PlatformServicesInterface& services,
                                           const std::string& folder, const std::string& sha256) {
  const std::string path = PathOf(services, folder);
  if (path.empty()) return Problem("their folder is not known");
  const std::shared_ptr<FileSystemServiceInterface> files = services.GetFileSystemService();
  Problem problem;
  const auto text = TextFile::Read(*files, path + '/' + kRulesFile, kMaxBytes, problem);
  if (!text) return "\"rules.json\" cannot be read: " + problem;
  const std::optional<VariantMap> json = JsonText::Read(services, *text);
  if (!json) return Problem("\"rules.json\" does not hold a JSON object");
  std::optional<RuleSet> rules = ReadRules(*json, problem);
  if (!rules) return "\"rules.json\" cannot be used: " + problem;
  LeaveOutRulesWithoutTheirFiles(*rules, files->GetDirectoryFiles(path));
  return InstalledRules{folder, sha256, std::move(*rules)};
}

void Delete(const PlatformServicesInterface& services, const std::string& folder) {
  const std::string path = PathOf(services, folder);
  if (path.empty()) return;
  Problem problem;
  if (!FolderTree::Delete(*services.GetFileSystemService(), path, problem)) {
    Log::Warning(kLogTag, "the folder %s is left over: %s", path.c_str(), problem.c_str());
  }
}

void DeleteAllBut(const PlatformServicesInterface& services, const std::string& folder) {
  const std::shared_ptr<FileSystemServiceInterface> files = services.GetFileSystemService();
  for (const std::string& name : files->GetDirectoryContents(Root(services))) {
    if (name == folder) continue;
    if (IsName(name)) {
      Delete(services, name);
    } else {
      TrySwallow([&] { files->DeleteFile(Root(services) + '/' + name); });
    }
  }
}

}  // namespace Velmora::RulesFolder
