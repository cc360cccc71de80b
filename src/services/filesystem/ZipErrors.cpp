#include "services/filesystem/ZipErrors.h"

#include "VelmoraCore/ErrorCodes.h"

namespace Velmora::ZipErrors {
namespace {

SdkError Make(const char* code, const std::string& message, int line) {
  return {code, message, DebugInfo("src/services/filesystem/ZipFile", line)};
}

}  // namespace

SdkError CannotOpen(int line) {
  return Make(ErrorCodes::kCompressedFileReadFailed, "Failed to open zip file", line);
}

SdkError CannotRead(int line) {
  return Make(ErrorCodes::kCompressedFileReadFailed, "Failed to read zip file", line);
}

SdkError Corrupted(const std::string& message, int line) {
  return Make(ErrorCodes::kCompressedFileCorrupted, message, line);
}

SdkError CannotWrite(const std::string& name, int line) {
  return Make(ErrorCodes::kCompressedFileWriteFailed, "Failed to open " + name + " for writing",
              line);
}

SdkError CannotInitialize(int line) {
  return Make(ErrorCodes::kCompressedFileInitFailed, "Failed to initialize decompressor", line);
}

SdkError CannotDecompress(int line) {
  return Make(ErrorCodes::kCompressedFileDecompressionFailed, "Failed to decompress zipped file",
              line);
}

SdkError CannotFinalize(int line) {
  return Make(ErrorCodes::kCompressedFileCloseFailed, "Failed to finalize decompression", line);
}

SdkError SizeMismatch(const std::string& name, int line) {
  return Make(ErrorCodes::kCompressedFileDecompressionFailed,
              "Uncompressed file size mismatch for " + name, line);
}

SdkError ChecksumMismatch(const std::string& name, int line) {
  return Make(ErrorCodes::kCompressedFileDecompressionFailed, "CRC32 mismatch for " + name, line);
}

}  // namespace Velmora::ZipErrors
