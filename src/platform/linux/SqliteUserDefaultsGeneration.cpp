#include "platform/linux/SqliteUserDefaultsGeneration.h"

#include <array>

#include <errno.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/linux/SqliteUserDefaultsError.h"
#include "platform/linux/SqliteUserDefaultsPatience.h"

namespace Platform {
namespace {

constexpr std::size_t kFileSize = 4096;

// Writes zeros behind what is there, so that every byte of the mapping has its place on the disk:
// to touch one that has none and gets none would end the process.
void Extend(int descriptor) {
  struct stat status {};
  if (::fstat(descriptor, &status) != 0) throw SqliteUserDefaultsError::OfSystem(errno);
  if (!S_ISREG(status.st_mode)) throw SqliteUserDefaultsError::OfSystem(EINVAL);
  const auto size = static_cast<std::size_t>(status.st_size);
  if (size >= kFileSize) return;
  const std::array<char, kFileSize> zeros{};
  const auto written = ::pwrite(descriptor, zeros.data(), kFileSize - size, status.st_size);
  if (written < 0) throw SqliteUserDefaultsError::OfSystem(errno);
  if (static_cast<std::size_t>(written) < kFileSize - size) {
    throw SqliteUserDefaultsError::OfSystem(ENOSPC);
  }
}

}  // namespace

SqliteUserDefaultsGeneration::SqliteUserDefaultsGeneration(const std::string& path,
                                                           std::chrono::milliseconds patience)
    : descriptor_(::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NONBLOCK, 0600)) {
  if (!descriptor_.IsOpen()) throw SqliteUserDefaultsError::OfSystem(errno);
  {
    const Lock lock(descriptor_.Number(), patience);
    Extend(descriptor_.Number());
  }
  void* mapping =
      ::mmap(nullptr, kFileSize, PROT_READ | PROT_WRITE, MAP_SHARED, descriptor_.Number(), 0);
  if (mapping == MAP_FAILED) throw SqliteUserDefaultsError::OfSystem(errno);
  shared_ = static_cast<Shared*>(mapping);
}

SqliteUserDefaultsGeneration::~SqliteUserDefaultsGeneration() {
  ::munmap(static_cast<void*>(shared_), kFileSize);
}

SqliteUserDefaultsGeneration::Write SqliteUserDefaultsGeneration::BeginWrite() noexcept {
  Write write{.before = Load(), .odd = 0};
  do {
    write.odd = IsEven(write.before) ? write.before + 1 : write.before + 2;
  } while (!shared_->generation.compare_exchange_weak(write.before, write.odd));
  return write;
}

bool SqliteUserDefaultsGeneration::EndWrite(std::uint64_t odd) noexcept {
  return shared_->generation.compare_exchange_strong(odd, odd + 1);
}

void SqliteUserDefaultsGeneration::BeginIncarnation() noexcept {
  shared_->incarnation.fetch_add(1);
  EndWrite(BeginWrite().odd);
}

SqliteUserDefaultsGeneration::Lock::Lock(int descriptor, std::chrono::milliseconds patience)
    : descriptor_(descriptor) {
  SqliteUserDefaultsPatience waiting(patience);
  waiting.Begin();
  while (::flock(descriptor_, LOCK_EX | LOCK_NB) != 0) {
    if (errno != EWOULDBLOCK && errno != EINTR) throw SqliteUserDefaultsError::OfSystem(errno);
    if (!waiting.WaitOneStep()) {
      throw SqliteUserDefaultsError(SqliteUserDefaultsError::Kind::Locked,
                                    "another process keeps it locked");
    }
  }
}

SqliteUserDefaultsGeneration::Lock::~Lock() { ::flock(descriptor_, LOCK_UN); }

}  // namespace Platform
