#include "services/filesystem/FileHandlerImpl.h"

#include <algorithm>
#include <utility>

#include "QEXCore_iOS/Platform/DeviceError.h"
#include "QEXCore_iOS/Platform/Host.h"

namespace Velmora {
namespace {

std::shared_ptr<Platform::FileManager> FileManager() {
  return Platform::Host::Current()->fileManager;
}

// Calls `operation`; false when the device fails.
template <class Operation>
bool Succeeds(Operation&& operation) {
  try {
    operation();
    return true;
  } catch (const Platform::DeviceError&) {
    return false;
  }
}

// How far `operation` moved the offset of `handle`, whether or not the device failed on the way.
template <class Operation>
std::uint32_t AdvanceOf(const Platform::FileHandle& handle, Operation&& operation) {
  const std::uint64_t start = handle.Offset();
  Succeeds(std::forward<Operation>(operation));
  return static_cast<std::uint32_t>(handle.Offset() - start);
}

}  // namespace

FileHandlerImpl::FileHandlerImpl(std::string path) : path_(std::move(path)) {}

std::int64_t FileHandlerImpl::Size() {
  const auto attributes = FileManager()->AttributesOfItem(path_);
  return attributes ? attributes->size : 0;
}

FileHandlerImpl::ModificationTime FileHandlerImpl::LastModified() {
  const auto attributes = FileManager()->AttributesOfItem(path_);
  if (!attributes) return {};
  const auto sinceEpoch = attributes->modified.time_since_epoch();
  return ModificationTime(std::chrono::duration_cast<std::chrono::seconds>(sinceEpoch));
}

bool FileHandlerImpl::OpenForReading() {
  handle_ = FileManager()->OpenForReading(path_);
  return handle_ != nullptr;
}

bool FileHandlerImpl::OpenForWriting() { return OpenForWritingUnless({}); }

bool FileHandlerImpl::OpenForWritingUnless(const std::string& spared) {
  auto handle = FileManager()->OpenForWriting(path_, spared);
  if (!handle) return false;
  handle_ = std::move(handle);
  return true;
}

bool FileHandlerImpl::MoveToOffset(std::uint64_t offset) {
  return handle_ && Succeeds([&] { handle_->Seek(offset); });
}

std::uint32_t FileHandlerImpl::Write(std::uint32_t count, const std::uint8_t* bytes) {
  if (!handle_ || bytes == nullptr) return 0;
  return AdvanceOf(*handle_, [&] { handle_->Write(bytes, count); });
}

std::uint32_t FileHandlerImpl::Read(std::uint32_t count, std::uint8_t* buffer) {
  if (!handle_ || buffer == nullptr) return 0;
  const std::uint32_t obtained = AdvanceOf(*handle_, [&] { handle_->Read(buffer, count); });
  // The caller's whole buffer is written, and with nothing that was not in the file.
  std::fill(buffer + obtained, buffer + count, std::uint8_t{0});
  return obtained;
}

bool FileHandlerImpl::Close() {
  const auto handle = std::move(handle_);
  return handle && Succeeds([&] { handle->Close(); });
}

std::shared_ptr<FileHandlerInterface> CreateNativeFileHandler(const std::string& path) {
  return std::make_shared<FileHandlerImpl>(path);
}

}  // namespace Velmora
