#include "platform/linux/LinuxFileHandle.h"

#include <algorithm>
#include <cerrno>
#include <limits>
#include <utility>

#include <unistd.h>

#include "QEXCore_iOS/Platform/DeviceError.h"
#include "platform/linux/FileErrors.h"

namespace Platform {
namespace {

constexpr const char* kReading = "read the file";
constexpr const char* kWriting = "write the file";

constexpr auto kLargestOffset = static_cast<std::uint64_t>(std::numeric_limits<off_t>::max());

}  // namespace

LinuxFileHandle::LinuxFileHandle(FileDescriptor file, std::string path)
    : file_(std::move(file)), path_(std::move(path)) {}

std::uint64_t LinuxFileHandle::Offset() const {
  ThrowIfClosed("tell the offset in the file");
  return offset_;
}

void LinuxFileHandle::Seek(std::uint64_t offset) {
  ThrowIfClosed("move the offset in the file");
  if (offset < aheadStart_ || offset - aheadStart_ > aheadLength_) DropAhead();
  offset_ = offset;
}

std::size_t LinuxFileHandle::Read(void* buffer, std::size_t count) {
  ThrowIfClosed(kReading);
  auto* const bytes = static_cast<std::byte*>(buffer);
  std::size_t done = TakeFromAhead(offset_, bytes, count);
  while (done < count) {
    const std::uint64_t position = offset_ + done;
    std::size_t step = 0;
    if (count - done >= kReadAhead) {
      step = ReadFromDevice(position, bytes + done, count - done);
    } else {
      FillAhead(position);
      step = TakeFromAhead(position, bytes + done, count - done);
    }
    if (step == 0) break;
    done += step;
  }
  offset_ += done;
  return done;
}

void LinuxFileHandle::Write(const void* bytes, std::size_t count) {
  ThrowIfClosed(kWriting);
  DropAhead();
  const auto* next = static_cast<const std::byte*>(bytes);
  while (count > 0) {
    if (offset_ > kLargestOffset) {
      throw DeviceError(DescribeFileFailure(kWriting, path_, ReasonOf(EFBIG)));
    }
    const ssize_t written = ::pwrite(file_.Number(), next, count, static_cast<off_t>(offset_));
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) {
      throw DeviceError(
          DescribeFileFailure(kWriting, path_, ReasonOf(written < 0 ? errno : ENOSPC)));
    }
    next += written;
    count -= static_cast<std::size_t>(written);
    offset_ += static_cast<std::uint64_t>(written);
  }
}

void LinuxFileHandle::Close() {
  ThrowIfClosed("close the file");
  // An interrupted close has closed the file all the same.
  if (file_.Close() != 0 && errno != EINTR) {
    throw DeviceError(DescribeFileFailure("close the file", path_, ReasonOf(errno)));
  }
}

void LinuxFileHandle::ThrowClosed(const char* action) const {
  throw DeviceError(DescribeFileFailure(action, path_, "It is closed"));
}

std::size_t LinuxFileHandle::TakeFromAhead(std::uint64_t offset, std::byte* buffer,
                                           std::size_t count) const {
  if (offset < aheadStart_ || offset - aheadStart_ >= aheadLength_) return 0;
  const auto skipped = static_cast<std::size_t>(offset - aheadStart_);
  const std::size_t taken = std::min(count, aheadLength_ - skipped);
  std::copy_n(ahead_.get() + skipped, taken, buffer);
  return taken;
}

void LinuxFileHandle::FillAhead(std::uint64_t offset) {
  if (!ahead_) ahead_ = std::make_unique_for_overwrite<std::byte[]>(kReadAhead);
  DropAhead();
  aheadLength_ = ReadFromDevice(offset, ahead_.get(), kReadAhead);
  aheadStart_ = offset;
}

std::size_t LinuxFileHandle::ReadFromDevice(std::uint64_t offset, std::byte* buffer,
                                            std::size_t count) const {
  if (offset > kLargestOffset) return 0;
  ssize_t length = 0;
  do {
    length = ::pread(file_.Number(), buffer, count, static_cast<off_t>(offset));
  } while (length < 0 && errno == EINTR);
  if (length < 0) throw DeviceError(DescribeFileFailure(kReading, path_, ReasonOf(errno)));
  return static_cast<std::size_t>(length);
}

}  // namespace Platform
