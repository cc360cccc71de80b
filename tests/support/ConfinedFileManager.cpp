#include "support/ConfinedFileManager.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <utility>

#include "QEXCore_iOS/Platform/DeviceError.h"

namespace TestSupport {

class ConfinedFileManager::Handle final : public Platform::FileHandle {
 public:
  Handle(std::unique_ptr<Platform::FileHandle> real, std::uint64_t& bytesToWrite)
      : real_(std::move(real)), bytesToWrite_(bytesToWrite) {}

  std::uint64_t Offset() const override { return real_->Offset(); }
  void Seek(std::uint64_t offset) override { real_->Seek(offset); }
  std::size_t Read(void* buffer, std::size_t count) override { return real_->Read(buffer, count); }
  void Write(const void* bytes, std::size_t count) override {
    const auto permitted = static_cast<std::size_t>(std::min<std::uint64_t>(bytesToWrite_, count));
    real_->Write(bytes, permitted);
    bytesToWrite_ -= permitted;
    if (permitted < count) throw Platform::DeviceError("No more may be written.");
  }
  void Close() override { real_->Close(); }

 private:
  std::unique_ptr<Platform::FileHandle> real_;
  std::uint64_t& bytesToWrite_;
};

ConfinedFileManager::ConfinedFileManager(std::string root, std::uint64_t bytesToWrite)
    : root_(std::move(root)), bytesToWrite_(bytesToWrite) {}

ConfinedFileManager::~ConfinedFileManager() = default;

bool ConfinedFileManager::IsInside(const std::string& path) const {
  if (path.empty()) return false;
  const auto below = std::filesystem::absolute(path).lexically_normal().lexically_relative(root_);
  return !below.empty() && *below.begin() != "..";
}

bool ConfinedFileManager::Permits(const std::string& path, Platform::Error* error) const {
  if (root_ == "/" || IsInside(path)) return true;
  if (error != nullptr) *error = Platform::Error("test", EACCES, path + " is out of bounds.");
  return false;
}

bool ConfinedFileManager::IsWritable(const std::string& path) const {
  return Permits(path, nullptr) && LinuxFileManager::IsWritable(path);
}

bool ConfinedFileManager::CreateDirectory(const std::string& path, Platform::Error* error) {
  return Permits(path, error) && LinuxFileManager::CreateDirectory(path, error);
}

bool ConfinedFileManager::RemoveItem(const std::string& path, Platform::Error* error) {
  return Permits(path, error) && LinuxFileManager::RemoveItem(path, error);
}

bool ConfinedFileManager::RemoveFileOrEmptyDirectory(const std::string& path,
                                                     Platform::Error* error) {
  return Permits(path, error) && LinuxFileManager::RemoveFileOrEmptyDirectory(path, error);
}

bool ConfinedFileManager::WriteFile(const std::string& path, std::string_view bytes,
                                    Platform::Error* error) {
  if (!Permits(path, error) || bytes.size() > bytesToWrite_) return false;
  bytesToWrite_ -= bytes.size();
  return LinuxFileManager::WriteFile(path, bytes, error);
}

std::unique_ptr<Platform::FileHandle> ConfinedFileManager::OpenForWriting(
    const std::string& path, const std::string& spared) {
  if (!Permits(path, nullptr)) return nullptr;
  auto handle = LinuxFileManager::OpenForWriting(path, spared);
  return handle ? std::make_unique<Handle>(std::move(handle), bytesToWrite_) : nullptr;
}

}  // namespace TestSupport
