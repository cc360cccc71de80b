#include "fuzz/ZipFuzzing.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <system_error>

#include <stdlib.h>

#include "QEXCore_iOS/Platform/Host.h"
#include "VelmoraCore/ErrorCodes.h"
#include "VelmoraCore/SdkError.h"
#include "services/filesystem/NativeCompressedFileService.h"
#include "services/filesystem/ZipFile.h"
#include "support/ConfinedFileManager.h"

namespace ZipFuzzing {
namespace {

namespace fs = std::filesystem;

using Velmora::SdkError;

// Enough for any honest small archive; hostile ones state gigabytes.
constexpr std::uint64_t kBytesToWrite = std::uint64_t{4} << 20;

// A directory for archives and what they hold, and the device that keeps to it. Both go with the
// process.
class Workplace {
 public:
  Workplace() : folder_(MakeFolder()), fileManager_(std::make_shared<Manager>(Destination())) {
    Platform::Host host = *Platform::Host::Current();
    host.fileManager = fileManager_;
    Platform::Host::Install(std::move(host));
  }
  ~Workplace() {
    std::error_code ignored;
    fs::remove_all(folder_, ignored);
  }
  Workplace(const Workplace&) = delete;
  Workplace& operator=(const Workplace&) = delete;

  std::string Archive() const { return folder_ + "/archive.zip"; }
  std::string Destination() const { return folder_ + "/out"; }

  void Prepare(std::string_view bytes) {
    fs::remove_all(Destination());
    std::ofstream(Archive(), std::ios::binary) << bytes;
    fileManager_->SetBytesToWrite(kBytesToWrite);
  }

  std::uint64_t BytesWritten() const { return kBytesToWrite - fileManager_->BytesToWrite(); }

 private:
  using Manager = TestSupport::ConfinedFileManager;

  static std::string MakeFolder() {
    std::string pattern =
        (fs::temp_directory_path() / "qexcore-fuzz-").string() + std::string(6, 'X');
    if (::mkdtemp(pattern.data()) == nullptr) {
      throw std::system_error(errno, std::generic_category(), pattern);
    }
    return pattern;
  }

  const std::string folder_;
  const std::shared_ptr<Manager> fileManager_;
};

std::size_t OpenFiles() {
  const fs::directory_iterator descriptors("/proc/self/fd");
  return static_cast<std::size_t>(std::distance(begin(descriptors), end(descriptors)));
}

std::string ProblemOf(const SdkError& error) {
  using namespace Velmora::ErrorCodes;
  constexpr std::array kPromised = {kCompressedFileReadFailed,          kCompressedFileCorrupted,
                                    kCompressedFileWriteFailed,         kCompressedFileInitFailed,
                                    kCompressedFileDecompressionFailed, kCompressedFileCloseFailed};
  const auto isThisOne = [&](const char* code) { return error.GetCode() == code; };
  if (std::none_of(kPromised.begin(), kPromised.end(), isThisOne)) {
    return "unpacking failed with " + error.GetCode();
  }
  return error.GetMessage().empty() ? "an error without a message" : "";
}

// As much as the entries may write: what they state, and what was gathered before the size showed.
// Nothing when the archive cannot be opened.
std::optional<std::uint64_t> MostBytes(const std::string& path) {
  constexpr std::uint64_t kGathered = std::uint64_t{64} * 1024;
  try {
    Velmora::ZipFile archive(path);
    std::uint64_t sum = 0;
    for (std::size_t i = 0; i < archive.EntryCount(); ++i) {
      sum += archive.Entry(i).UncompressedSize() + kGathered;
    }
    return sum;
  } catch (const SdkError&) {
    return std::nullopt;
  }
}

}  // namespace

std::string CheckArchive(std::string_view bytes) {
  static Workplace workplace;
  workplace.Prepare(bytes);
  const std::size_t openBefore = OpenFiles();
  const auto mostBytes = MostBytes(workplace.Archive());
  try {
    const bool done = Velmora::CreateNativeCompressedFileService()->Extract(
        workplace.Archive(), Velmora::CompressedFileType::Zip, workplace.Destination());
    if (!done || !mostBytes) return "unpacking, but not opening, succeeded";
  } catch (const SdkError& error) {
    if (std::string problem = ProblemOf(error); !problem.empty()) return problem;
  }
  if (workplace.BytesWritten() > mostBytes.value_or(0)) return "more was written than is stated";
  return OpenFiles() == openBefore ? "" : "a file was left open";
}

}  // namespace ZipFuzzing
