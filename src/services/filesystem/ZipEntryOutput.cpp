#include "services/filesystem/ZipEntryOutput.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include <zlib.h>

#include "services/filesystem/ZipErrors.h"

namespace Velmora {
namespace {

constexpr std::uint64_t kLeastGathered = 1024;
constexpr std::uint64_t kMostGathered = std::uint64_t{64} * 1024;

}  // namespace

ZipEntryOutput::ZipEntryOutput(FileHandlerInterface& file, std::string name,
                               std::uint64_t expectedSize)
    : file_(file),
      name_(std::move(name)),
      expectedSize_(expectedSize),
      capacity_(static_cast<std::size_t>(std::clamp(expectedSize, kLeastGathered, kMostGathered))),
      gathered_(std::make_unique_for_overwrite<std::uint8_t[]>(capacity_)),
      crc_(static_cast<std::uint32_t>(::crc32(0, nullptr, 0))) {}

ZipEntryOutput::~ZipEntryOutput() { Flush(); }

void ZipEntryOutput::Append(const std::uint8_t* bytes, std::size_t count) {
  while (count > 0) {
    if (gatheredCount_ == capacity_) {
      Flush();
      if (isRefused_ || count_ > expectedSize_) throw ZipErrors::SizeMismatch(name_);
    }
    const std::size_t step = std::min(count, capacity_ - gatheredCount_);
    std::memcpy(gathered_.get() + gatheredCount_, bytes, step);
    gatheredCount_ += step;
    bytes += step;
    count -= step;
  }
}

void ZipEntryOutput::Flush() {
  if (gatheredCount_ == 0) return;
  const auto gathered = static_cast<std::uint32_t>(std::exchange(gatheredCount_, 0));
  crc_ = static_cast<std::uint32_t>(::crc32(crc_, gathered_.get(), gathered));
  const std::uint32_t written = file_.Write(gathered, gathered_.get());
  count_ += written;
  isRefused_ = isRefused_ || written < gathered;
}

}  // namespace Velmora
