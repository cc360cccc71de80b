#include "modules/ConfigurationDownload.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <utility>

#include "VelmoraCore/Log.h"
#include "VelmoraCore/StringUtils.h"
#include "VelmoraCore/TryCatch.h"
#include "modules/ConfigurationFile.h"
#include "modules/JsonText.h"

namespace Velmora {
namespace {

constexpr const char* kLogTag = "Configuration";
constexpr const char* kUrlProperty = "VelmoraConfigurationUrl";
constexpr const char* kPlaceholder = "{appId}";
constexpr const char* kFolder = "configuration";
constexpr std::size_t kMaxAppIdBytes = 255;

// The remote file manager gives up after half a minute; a minute and a little of silence is one.
constexpr std::chrono::seconds kAnswerTime{61};
constexpr std::chrono::seconds kFirstDelay{15};
constexpr std::chrono::hours kLongestDelay{1};

bool IsUnreserved(char byte) {
  return (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z') ||
         (byte >= '0' && byte <= '9') || byte == '-' || byte == '.' || byte == '_' || byte == '~';
}

std::string PercentEncoded(const std::string& text) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string encoded;
  for (const char byte : text) {
    const auto code = static_cast<unsigned char>(byte);
    if (IsUnreserved(byte)) {
      encoded += byte;
    } else {
      encoded += {'%', kDigits[code / 16U], kDigits[code % 16U]};
    }
  }
  return encoded;
}

}  // namespace

ConfigurationDownload::ConfigurationDownload(HubContext& hub)
    : hub_(hub), wayHome_(hub.WayHome()), delay_(kFirstDelay, kLongestDelay), timer_(hub) {}

bool ConfigurationDownload::IsAppId(const std::string& appId) {
  const bool hasControl = std::any_of(appId.begin(), appId.end(), [](char byte) {
    return static_cast<unsigned char>(byte) < 0x20 || byte == 0x7F;
  });
  return !appId.empty() && appId.size() <= kMaxAppIdBytes && !hasControl && appId != "." &&
         appId != "..";
}

bool ConfigurationDownload::Begin(const std::string& appId, Members onMembers) {
  ++attempt_;
  timer_.Stop();
  url_.clear();
  delay_.Reset();
  onMembers_ = std::move(onMembers);
  const std::optional<std::string> url = FindUrl(appId);
  if (!url.has_value()) return false;
  url_ = *url;
  Fetch();
  return true;
}

std::optional<std::string> ConfigurationDownload::FindUrl(const std::string& appId) const {
  const PlatformServicesInterface& services = hub_.Services();
  const std::shared_ptr<SystemInfoServiceInterface> info = services.GetSystemInfoService();
  const std::string pattern = info == nullptr ? "" : info->GetProperty(kUrlProperty);
  const char* problem = nullptr;
  if (services.GetRemoteFileManagerService() == nullptr) {
    problem = "there is no remote file manager";
  } else if (pattern.empty()) {
    problem = "the information dictionary has no such address";
  } else if (pattern.find(kPlaceholder) == std::string::npos || !pattern.starts_with("https://") ||
             !StringUtils::StringIsUrl(pattern)) {
    problem = "it must be an https URL with \"{appId}\" in it";
  }
  if (problem == nullptr) {
    return StringUtils::Replace(pattern, kPlaceholder, PercentEncoded(appId));
  }
  Log::Warning(kLogTag, "no configuration can be fetched from \"%s\": %s", kUrlProperty, problem);
  return std::nullopt;
}

std::optional<VariantMap> ConfigurationDownload::Cached() const {
  std::optional<VariantMap> members;
  const std::shared_ptr<RemoteFileManagerServiceInterface> files =
      hub_.Services().GetRemoteFileManagerService();
  if (files == nullptr || url_.empty()) return members;
  TrySwallow([&] {
    const auto file = files->GetFileFromCache(url_, kFolder);
    if (file) members = JsonText::Read(hub_.Services(), file.GetValue()->ReadJsonStringFromFile());
  });
  return members;
}

void ConfigurationDownload::Fetch() {
  ++attempt_;
  timer_.Start(kAnswerTime, [this] { OnSilence(); });
  const auto onFile = [wayHome = wayHome_, this, attempt = attempt_](
                          const RemoteFileManagerServiceInterface::FileResult& result) {
    // Read here, on the service's thread.
    const std::string text = result ? result.GetValue()->ReadJsonStringFromFile() : "";
    const std::string problem = result ? "" : result.GetError().what();
    wayHome([this, attempt, text, problem] {
      if (attempt != attempt_) return;
      timer_.Stop();
      if (problem.empty()) {
        OnText(text);
      } else {
        Log::Warning(kLogTag, "the configuration of the app id cannot be had: %s", problem.c_str());
      }
    });
  };
  TryCatch(
      [&] { hub_.Services().GetRemoteFileManagerService()->GetFileAsync(url_, kFolder, onFile); },
      [](SdkError& error) {
        Log::Warning(kLogTag, "the configuration of the app id cannot be asked for: %s",
                     error.what());
      });
}

void ConfigurationDownload::OnText(const std::string& text) {
  const bool isTooLong = text.size() > static_cast<std::size_t>(ConfigurationFile::kMaxBytes);
  const std::optional<VariantMap> members =
      isTooLong ? std::nullopt : JsonText::Read(hub_.Services(), text);
  if (members.has_value()) {
    onMembers_(*members);
  } else {
    Log::Warning(kLogTag, "the configuration of the app id cannot be used: %s",
                 isTooLong ? "it is too long" : "it is no JSON object");
  }
}

void ConfigurationDownload::OnSilence() {
  // What comes now comes too late.
  ++attempt_;
  const std::chrono::milliseconds delay = delay_.Next();
  Log::Debug(kLogTag,
             "the configuration of the app id did not come; it is asked for again in %lld ms",
             static_cast<long long>(delay.count()));
  timer_.Start(delay, [this] { Fetch(); });
}

}  // namespace Velmora
