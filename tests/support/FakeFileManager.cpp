#include "support/FakeFileManager.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "QEXCore_iOS/Platform/DeviceError.h"

namespace TestSupport {

class FakeFileManager::Faults {
 public:
  struct Settings {
    std::map<FileFault, Platform::Error> errors;
    std::optional<std::uint64_t> bytesToWrite;
    std::optional<std::uint64_t> bytesToRead;
  };

  // True when `fault` is switched on; its error, if it has one, is then written.
  bool Strikes(FileFault fault, Platform::Error* error) const {
    const auto injected = Find(fault);
    if (!injected) return false;
    if (error != nullptr && *injected != Platform::Error()) *error = *injected;
    return true;
  }

  void ThrowIfStruck(FileFault fault) const {
    if (const auto injected = Find(fault)) {
      throw Platform::DeviceError(injected->LocalizedDescription());
    }
  }

  // How many of `count` bytes may still pass; they then count as passed.
  std::size_t Pass(std::optional<std::uint64_t> Settings::*budget, std::size_t count) {
    return settings_.With([&](Settings& settings) {
      auto& left = settings.*budget;
      if (!left) return count;
      const auto passed = static_cast<std::size_t>(std::min<std::uint64_t>(*left, count));
      *left -= passed;
      return passed;
    });
  }

  Guarded<Settings>& TheSettings() { return settings_; }

 private:
  std::optional<Platform::Error> Find(FileFault fault) const {
    return settings_.With([&](const Settings& settings) -> std::optional<Platform::Error> {
      const auto found = settings.errors.find(fault);
      if (found == settings.errors.end()) return std::nullopt;
      return found->second;
    });
  }

  Guarded<Settings> settings_;
};

class FakeFileManager::Handle final : public Platform::FileHandle {
 public:
  Handle(std::unique_ptr<Platform::FileHandle> real, std::shared_ptr<Faults> faults)
      : real_(std::move(real)), faults_(std::move(faults)) {}

  std::uint64_t Offset() const override { return real_->Offset(); }

  void Seek(std::uint64_t offset) override {
    faults_->ThrowIfStruck(FileFault::Seek);
    real_->Seek(offset);
  }

  std::size_t Read(void* buffer, std::size_t count) override {
    faults_->ThrowIfStruck(FileFault::Read);
    if (faults_->Pass(&Faults::Settings::bytesToRead, count) < count) {
      throw Platform::DeviceError("The device stopped reading.");
    }
    return real_->Read(buffer, count);
  }

  void Write(const void* bytes, std::size_t count) override {
    faults_->ThrowIfStruck(FileFault::Write);
    const std::size_t passed = faults_->Pass(&Faults::Settings::bytesToWrite, count);
    real_->Write(bytes, passed);
    if (passed < count) throw Platform::DeviceError("The device stopped writing.");
  }

  void Close() override {
    real_->Close();
    faults_->ThrowIfStruck(FileFault::Close);
  }

 private:
  std::unique_ptr<Platform::FileHandle> real_;
  std::shared_ptr<Faults> faults_;
};

FakeFileManager::FakeFileManager()
    : faults_(std::make_shared<Faults>()), cachesDirectory_(folder_.PathOf("caches")) {}

FakeFileManager::~FakeFileManager() = default;

void FakeFileManager::Fail(FileFault fault, const Platform::Error& error) {
  faults_->TheSettings().With([&](auto& settings) { settings.errors[fault] = error; });
}

void FakeFileManager::FailWritesAfter(std::uint64_t bytes) {
  faults_->TheSettings().With([&](auto& settings) { settings.bytesToWrite = bytes; });
}

void FakeFileManager::FailReadsAfter(std::uint64_t bytes) {
  faults_->TheSettings().With([&](auto& settings) { settings.bytesToRead = bytes; });
}

void FakeFileManager::Heal() { faults_->TheSettings().Set({}); }

void FakeFileManager::SetGroupContainerDirectory(const std::string& group,
                                                 const std::string& path) {
  groupContainers_.With([&](auto& containers) { containers[group] = path; });
}

bool FakeFileManager::CreateDirectory(const std::string& path, Platform::Error* error) {
  if (faults_->Strikes(FileFault::CreateDirectory, error)) return false;
  return LinuxFileManager::CreateDirectory(path, error);
}

bool FakeFileManager::RemoveItem(const std::string& path, Platform::Error* error) {
  if (faults_->Strikes(FileFault::RemoveItem, error)) return false;
  return LinuxFileManager::RemoveItem(path, error);
}

bool FakeFileManager::RemoveFileOrEmptyDirectory(const std::string& path, Platform::Error* error) {
  if (faults_->Strikes(FileFault::RemoveItem, error)) return false;
  return LinuxFileManager::RemoveFileOrEmptyDirectory(path, error);
}

std::vector<Platform::DirectoryEntry> FakeFileManager::ContentsOfDirectory(
    const std::string& path, Platform::Error* error) const {
  if (faults_->Strikes(FileFault::ContentsOfDirectory, error)) return {};
  return LinuxFileManager::ContentsOfDirectory(path, error);
}

std::optional<std::string> FakeFileManager::ReadText(const std::string& path,
                                                     Platform::Error* error) const {
  if (faults_->Strikes(FileFault::ReadText, error)) return std::nullopt;
  return LinuxFileManager::ReadText(path, error);
}

bool FakeFileManager::WriteFile(const std::string& path, std::string_view bytes,
                                Platform::Error* error) {
  if (faults_->Strikes(FileFault::WriteFile, error)) return false;
  return LinuxFileManager::WriteFile(path, bytes, error);
}

std::unique_ptr<Platform::FileHandle> FakeFileManager::OpenForReading(const std::string& path) {
  if (faults_->Strikes(FileFault::OpenForReading, nullptr)) return nullptr;
  auto handle = LinuxFileManager::OpenForReading(path);
  return handle ? std::make_unique<Handle>(std::move(handle), faults_) : nullptr;
}

std::unique_ptr<Platform::FileHandle> FakeFileManager::OpenForWriting(const std::string& path,
                                                                      const std::string& spared) {
  if (faults_->Strikes(FileFault::OpenForWriting, nullptr)) return nullptr;
  auto handle = LinuxFileManager::OpenForWriting(path, spared);
  return handle ? std::make_unique<Handle>(std::move(handle), faults_) : nullptr;
}

std::string FakeFileManager::GroupContainerDirectory(const std::string& group) const {
  if (group.empty() || group == "." || group == ".." || group.find('/') != std::string::npos) {
    return {};
  }
  return groupContainers_.With([&](const auto& containers) {
    const auto found = containers.find(group);
    return found == containers.end() ? folder_.PathOf("groups/" + group) : found->second;
  });
}

}  // namespace TestSupport
