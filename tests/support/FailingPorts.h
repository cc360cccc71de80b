#pragma once

#include <array>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "QEXCore_iOS/Platform/DeviceError.h"
#include "QEXCore_iOS/Platform/Host.h"

// Ports of a device that fails whatever is asked of it, by throwing, also where the real ones
// promise not to.
namespace TestSupport {

[[noreturn]] inline void FailDevice() { throw Platform::DeviceError("The device failed."); }

class FailingApplication final : public Platform::Application {
 public:
  Platform::ApplicationState State() const override { FailDevice(); }
  std::shared_ptr<Platform::Window> KeyWindow() const override { FailDevice(); }
  std::vector<std::shared_ptr<Platform::Window>> Windows() const override { FailDevice(); }
  bool OpenUrl(const std::string&) override { FailDevice(); }
};

class FailingBase64 final : public Platform::Base64 {
 public:
  std::optional<std::string> Decode(std::string_view) const override { FailDevice(); }
  std::string Encode(std::string_view) const override { FailDevice(); }
};

class FailingBundle final : public Platform::Bundle {
 public:
  std::string BundlePath() const override { FailDevice(); }
  std::string ExecutablePath() const override { FailDevice(); }
  Platform::Value ObjectForInfoDictionaryKey(const std::string&) const override { FailDevice(); }
  std::string PathForResource(const std::string&) const override { FailDevice(); }
};

class FailingDevice final : public Platform::Device {
 public:
  std::string SystemName() const override { FailDevice(); }
  std::string SystemVersion() const override { FailDevice(); }
  std::string Model() const override { FailDevice(); }
  std::string HardwareModel() const override { FailDevice(); }
};

class FailingDigest final : public Platform::Digest {
 public:
  std::array<std::uint8_t, 32> Sha256(std::string_view) const override { FailDevice(); }
};

// Has no place in WithFailingPorts: services may rely on files that do not throw.
class FailingFileManager final : public Platform::FileManager {
 public:
  std::string CurrentDirectoryPath() const override { FailDevice(); }
  Platform::FileType TypeOfItem(const std::string&) const override { FailDevice(); }
  bool IsWritable(const std::string&) const override { FailDevice(); }
  bool CreateDirectory(const std::string&, Platform::Error*) override { FailDevice(); }
  bool RemoveItem(const std::string&, Platform::Error*) override { FailDevice(); }
  bool RemoveFileOrEmptyDirectory(const std::string&, Platform::Error*) override { FailDevice(); }
  std::vector<Platform::DirectoryEntry> ContentsOfDirectory(const std::string&,
                                                            Platform::Error*) const override {
    FailDevice();
  }
  std::optional<Platform::FileAttributes> AttributesOfItem(const std::string&) const override {
    FailDevice();
  }
  std::optional<std::string> ReadText(const std::string&, Platform::Error*) const override {
    FailDevice();
  }
  bool WriteFile(const std::string&, std::string_view, Platform::Error*) override { FailDevice(); }
  std::unique_ptr<Platform::FileHandle> OpenForReading(const std::string&) override {
    FailDevice();
  }
  std::unique_ptr<Platform::FileHandle> OpenForWriting(const std::string&,
                                                       const std::string&) override {
    FailDevice();
  }
  std::string CachesDirectory() const override { FailDevice(); }
  std::string GroupContainerDirectory(const std::string&) const override { FailDevice(); }
};

class FailingLocalNotifications final : public Platform::LocalNotifications {
 public:
  bool IsSupported() const override { FailDevice(); }
  bool KnowsCategory() const override { FailDevice(); }
  void Schedule(const Platform::LocalNotification&) override { FailDevice(); }
};

class FailingLocale final : public Platform::Locale {
 public:
  std::string CurrentIdentifier() const override { FailDevice(); }
};

class FailingProcessInfo final : public Platform::ProcessInfo {
 public:
  std::string OperatingSystemVersionString() const override { FailDevice(); }
  std::vector<std::string> CallStackSymbols() const override { FailDevice(); }
  std::int64_t ProcessIdentifier() const noexcept override { return 1; }
  void SetCurrentThreadName(const std::string&) override { FailDevice(); }
};

class FailingReachabilityProbe final : public Platform::ReachabilityProbe {
 public:
  std::optional<std::uint32_t> Flags() const override { FailDevice(); }
};

// Makes no probes.
class FailingReachability final : public Platform::NetworkReachability {
 public:
  std::unique_ptr<Platform::ReachabilityProbe> CreateInternetProbe() const override {
    FailDevice();
  }
};

class FailingScreen final : public Platform::Screen {
 public:
  Platform::ScreenMetrics MainScreen() const override { FailDevice(); }
};

class FailingSystemLog final : public Platform::SystemLog {
 public:
  void Write(std::string_view) override { FailDevice(); }
};

class FailingTelephony final : public Platform::Telephony {
 public:
  std::unique_ptr<Platform::TelephonyNetworkInfo> CreateNetworkInfo() const override {
    FailDevice();
  }
};

class FailingUrlParser final : public Platform::UrlParser {
 public:
  std::optional<Platform::UrlComponents> Parse(const std::string&) const override { FailDevice(); }
};

class FailingUrlSession final : public Platform::UrlSession {
 public:
  TaskId Start(Platform::UrlRequest, Completion) override { FailDevice(); }
  void Cancel(TaskId) override { FailDevice(); }
};

class FailingUserNotificationCenter final : public Platform::UserNotificationCenter {
 public:
  bool IsSupported() const override { FailDevice(); }
  std::optional<Platform::DateComponents> CalendarComponents(double) const override {
    FailDevice();
  }
  void Add(const Platform::NotificationRequest&) override { FailDevice(); }
  void ResumePending() override { FailDevice(); }
};

class FailingUuidGenerator final : public Platform::UuidGenerator {
 public:
  Platform::UuidBytes Random() override { FailDevice(); }
};

// `host` with every port above in the place of its own, save the files.
inline Platform::Host WithFailingPorts(Platform::Host host) {
  host.application = std::make_shared<FailingApplication>();
  host.base64 = std::make_shared<FailingBase64>();
  host.bundle = std::make_shared<FailingBundle>();
  host.device = std::make_shared<FailingDevice>();
  host.digest = std::make_shared<FailingDigest>();
  host.localNotifications = std::make_shared<FailingLocalNotifications>();
  host.locale = std::make_shared<FailingLocale>();
  host.processInfo = std::make_shared<FailingProcessInfo>();
  host.reachability = std::make_shared<FailingReachability>();
  host.screen = std::make_shared<FailingScreen>();
  host.systemLog = std::make_shared<FailingSystemLog>();
  host.telephony = std::make_shared<FailingTelephony>();
  host.urlParser = std::make_shared<FailingUrlParser>();
  host.urlSession = std::make_shared<FailingUrlSession>();
  host.userNotificationCenter = std::make_shared<FailingUserNotificationCenter>();
  host.uuidGenerator = std::make_shared<FailingUuidGenerator>();
  return host;
}

}  // namespace TestSupport
