#pragma once

#include <cstddef>
#include <filesystem>
#include <iterator>
#include <string>

#include "VelmoraCore/SdkError.h"
#include "services/filesystem/NativeCompressedFileService.h"
#include "support/ZipBuilder.h"
#include "unit/filesystem/FileSystemFixture.h"

// Archives in an empty directory, and what becomes of them in the directory "out" beside them.
class ZipFixture : public FileSystemFixture {
 protected:
  static constexpr const char* kCannotOpen = "compressed-file.read-failed: Failed to open zip file";
  static constexpr const char* kCannotRead = "compressed-file.read-failed: Failed to read zip file";
  static constexpr const char* kNoZipFile =
      "compressed-file.corrupted: File does not appear to be a zip file";
  static constexpr const char* kCannotDecompress =
      "compressed-file.decompression-failed: Failed to decompress zipped file";

  static std::string CannotWrite(const std::string& name) {
    return "compressed-file.write-failed: Failed to open " + name + " for writing";
  }
  static std::string WrongSize(const std::string& name) {
    return "compressed-file.decompression-failed: Uncompressed file size mismatch for " + name;
  }
  static std::string WrongChecksum(const std::string& name) {
    return "compressed-file.decompression-failed: CRC32 mismatch for " + name;
  }

  // Nothing when the operation succeeds, else the code and the message of its error.
  template <class Operation>
  static std::string ErrorOf(Operation&& operation) {
    try {
      operation();
      return {};
    } catch (const Velmora::SdkError& error) {
      return error.GetCode() + ": " + error.GetMessage();
    }
  }

  std::string WriteArchive(const std::string& bytes) const {
    return folder_.WriteFile("archive.zip", bytes);
  }

  // Unpacks the archive at `path`; gives what ErrorOf gives.
  static std::string ErrorOfExtracting(const std::string& path, const std::string& destination) {
    return ErrorOf([&] {
      EXPECT_TRUE(Velmora::CreateNativeCompressedFileService()->Extract(
          path, Velmora::CompressedFileType::Zip, destination));
    });
  }

  // The same of an archive of these bytes, into "out".
  std::string Extract(const std::string& bytes) const {
    return ErrorOfExtracting(WriteArchive(bytes), PathOf("out"));
  }
  std::string Extract(const TestSupport::ZipEntry& entry) const {
    return Extract(TestSupport::ArchiveOf({entry}));
  }

  // The bytes of an unpacked file.
  std::string Unpacked(const std::string& name) const {
    return TestSupport::ReadFileBytes(PathOf("out/" + name));
  }

  // Text that deflates to something of its own size.
  static std::string Varied(std::size_t size) {
    std::string text(size, '\0');
    std::uint32_t state = 12345;
    for (char& character : text) {
      state = state * 1664525U + 1013904223U;
      character = static_cast<char>(state >> 24);
    }
    return text;
  }

  static std::size_t OpenFiles() {
    const std::filesystem::directory_iterator descriptors("/proc/self/fd");
    return static_cast<std::size_t>(std::distance(begin(descriptors), end(descriptors)));
  }
};
