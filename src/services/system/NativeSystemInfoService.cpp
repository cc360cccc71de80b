#include "services/system/NativeSystemInfoService.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <vector>

#include "QEXCore_iOS/Platform/Utf8.h"
#include "VelmoraCore/Log.h"
#include "interop/AppInfo.h"
#include "interop/StringConversion.h"
#include "services/system/AskHost.h"
#include "services/system/NativeDisplayInformation.h"
#include "services/system/Reachability.h"
#include "services/system/SystemInfoCaches.h"
#include "services/system/UserAgent.h"

namespace Velmora {
namespace {

using Platform::Host;

constexpr std::size_t kMaximumThreadName = 15;
constexpr const char* kUnknown = "Unknown";

std::string TextOf(const std::string& platformText) {
  return ToCppString(std::optional<std::string>(platformText));
}

std::string InfoText(const std::string& key) {
  return AskHost(
      [&](const Host& host) {
        const std::optional<std::string> platformKey = ToNSString(key);
        if (!platformKey) return std::string();
        return ToCppString(host.bundle->ObjectForInfoDictionaryKey(*platformKey));
      },
      "");
}

// Empty when the platform names no directory.
std::string ChooseCacheDirectory(Platform::FileManager& files) {
  const std::optional<std::string>& group = AppInfo::GetAppGroup();
  if (group) {
    std::string container = TextOf(files.GroupContainerDirectory(*group));
    if (!container.empty()) return container;
  }
  return TextOf(files.CachesDirectory());
}

// The start of `name`, at most `limit` bytes long, that is well-formed and ends with a whole
// character.
std::string_view CutName(std::string_view name, std::size_t limit) {
  std::size_t end = 0;
  while (end < name.size()) {
    const std::size_t next = end + Platform::Utf8CharacterLength(name.substr(end));
    if (next == end || next > limit) break;
    end = next;
  }
  return name.substr(0, end);
}

// `text` without its last character, all bytes of it.
std::string WithoutLastCharacter(std::string text) {
  const auto isContinuation = [](char byte) { return (byte & 0xC0) == 0x80; };
  while (!text.empty() && isContinuation(text.back())) text.pop_back();
  if (!text.empty()) text.pop_back();
  return text;
}

std::string SystemVersion() {
  return AskHost([](const Host& host) { return TextOf(host.device->SystemVersion()); }, "");
}

// The environment may name a locale that the system does not have.
std::locale EnvironmentLocale() {
  try {
    return std::locale("");
  } catch (...) {
    return std::locale::classic();
  }
}

}  // namespace

NativeSystemInfoService::NativeSystemInfoService()
    : Object("SystemInfoService"), sdkVersion_("CPP-5.0.0-OIP") {}

std::string NativeSystemInfoService::GetApplicationBaseDir() const {
  return AskHost([](const Host& host) { return TextOf(host.bundle->BundlePath()); }, "");
}

std::string NativeSystemInfoService::GetApplicationCacheDir() const {
  std::string directory =
      AskHost([](const Host& host) { return ChooseCacheDirectory(*host.fileManager); }, "");
  if (directory.empty()) return directory;
  AskHost(
      [&directory](const Host& host) {
        Platform::FileManager& files = *host.fileManager;
        return files.TypeOfItem(directory) != Platform::FileType::Missing ||
               files.CreateDirectory(directory, nullptr);
      },
      false);
  return directory;
}

std::string NativeSystemInfoService::GetAsset(const std::string& fileName) const {
  if (fileName.empty()) {
    Log::Debug(LogTag(), "Failed to get asset (file name was empty)");
    return {};
  }
  std::string path;
  Platform::Error error;
  const std::optional<std::string> contents = AskHost(
      [&](const Host& host) {
        const std::optional<std::string> name = ToNSString(fileName);
        if (name) path = host.bundle->PathForResource(*name);
        return host.fileManager->ReadText(path, &error);
      },
      std::nullopt);
  if (!contents) {
    Log::Warning(LogTag(), "Call to GetAsset failed to read file '%s': %s", path.c_str(),
                 error.LocalizedDescription().c_str());
  }
  return ToCppString(contents);
}

std::string NativeSystemInfoService::GetProperty(const std::string& key) const {
  return InfoText(key);
}

std::string NativeSystemInfoService::GetApplicationName() const {
  for (const char* key : {"CFBundleName", "CFBundleDisplayName"}) {
    std::string name = InfoText(key);
    if (!name.empty()) return name;
  }
  Log::Error(LogTag(),
             "Failed to get application name (CFBundleName, CFBundleDisplayName are nil)");
  return {};
}

std::string NativeSystemInfoService::GetApplicationVersion() const {
  return InfoText("CFBundleVersion");
}

std::string NativeSystemInfoService::GetApplicationVersionCode() const {
  return InfoText("CFBundleShortVersionString");
}

std::locale NativeSystemInfoService::GetActiveLocale() const {
  try {
    return std::locale(TextOf(Host::Current()->locale->CurrentIdentifier()));
  } catch (...) {
    Log::Error(LogTag(),
               "Failed to get valid c++ locale string from iOS Platform. Returning the default "
               "locale");
    return EnvironmentLocale();
  }
}

std::shared_ptr<DisplayInformationInterface> NativeSystemInfoService::GetDisplayInformation()
    const {
  return std::make_shared<NativeDisplayInformation>();
}

std::string NativeSystemInfoService::GetOperatingSystemName() const {
  return SystemInfoCaches::OfProcess()->operatingSystemName.Get([] {
    return AskHost([](const Host& host) { return TextOf(host.device->SystemName()); }, "");
  });
}

std::string NativeSystemInfoService::GetCanonicalPlatformName() const { return "ios"; }

std::string NativeSystemInfoService::GetCurrentStackTrace() const {
  return AskHost(
      [](const Host& host) {
        std::string trace;
        for (const std::string& symbol : host.processInfo->CallStackSymbols()) {
          trace.append("\n").append(TextOf(symbol));
        }
        return trace;
      },
      "");
}

std::string NativeSystemInfoService::GetOperatingSystemVersion() const {
  return SystemInfoCaches::OfProcess()->operatingSystemVersion.Get([] { return SystemVersion(); });
}

std::string NativeSystemInfoService::GetDeviceName() const {
  return AskHost([](const Host& host) { return TextOf(host.device->HardwareModel()); }, "");
}

std::string NativeSystemInfoService::GetDeviceBuildId() const {
  return AskHost(
      [](const Host& host) {
        const std::string version = TextOf(host.processInfo->OperatingSystemVersionString());
        return WithoutLastCharacter(version.substr(version.rfind(' ') + 1));
      },
      "");
}

std::string NativeSystemInfoService::GetMobileCarrierName() const {
  return AskHost(
      [](const Host& host) -> std::string {
        const auto telephony = host.telephony->CreateNetworkInfo();
        if (!telephony || !telephony->KnowsSubscriberProvider()) return kUnknown;
        return TextOf(telephony->CarrierName().value_or("(null)"));
      },
      kUnknown);
}

std::string NativeSystemInfoService::GetRunMode() const {
  return SystemInfoCaches::OfProcess()->runMode.Get([] {
    const std::string executable =
        AskHost([](const Host& host) { return host.bundle->ExecutablePath(); }, "");
    const bool isExtension = executable.find(".appex/") != std::string::npos;
    return isExtension ? "Extension" : "Application";
  });
}

ConnectionStatus NativeSystemInfoService::GetNetworkConnectionStatus() const {
  const auto probe = Reachability::reachabilityForInternetConnection();
  if (!probe) return ConnectionStatus::NotConnected;
  switch (probe->reachabilityStatus()) {
    case ReachabilityStatus::Reachable:
      return ConnectionStatus::Connected;
    case ReachabilityStatus::NotReachable:
      return ConnectionStatus::NotConnected;
    case ReachabilityStatus::Unreadable:
      break;
  }
  return ConnectionStatus::Unknown;
}

std::string NativeSystemInfoService::GetSdkVersion() const { return sdkVersion_; }

std::string NativeSystemInfoService::GetDefaultUserAgent() const {
  return SystemInfoCaches::OfProcess()->defaultUserAgent.Get([this] { return BuildUserAgent(); });
}

void NativeSystemInfoService::SetCurrentThreadName(const std::string& name) const {
  const std::string text(CutName(std::string_view(name.c_str()), kMaximumThreadName));
  if (text.empty()) return;
  AskHost(
      [&](const Host& host) {
        host.processInfo->SetCurrentThreadName(text);
        return true;
      },
      false);
}

std::string NativeSystemInfoService::BuildUserAgent() const {
  const std::string model =
      AskHost([](const Host& host) { return TextOf(host.device->Model()); }, "");
  return FormatUserAgent(model, SystemVersion(), GetActiveLocale().name());
}

std::shared_ptr<SystemInfoServiceInterface> CreateNativeSystemInfoService() {
  return std::make_shared<NativeSystemInfoService>();
}

}  // namespace Velmora
