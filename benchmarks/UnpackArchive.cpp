// Unpacks a zip archive with one of three libraries, in a process of its own, as the tools do that
// it is measured beside.
//
//   unpack_archive ours|libzip|minizip <archive> <directory>

#include <array>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <stdexcept>
#include <string>

#include <fcntl.h>
#include <minizip/unzip.h>
#include <unistd.h>
#include <zip.h>

#include "services/filesystem/NativeCompressedFileService.h"

namespace {

namespace fs = std::filesystem;

constexpr std::size_t kPiece = std::size_t{64} * 1024;

void Check(bool succeeded) {
  if (!succeeded) throw std::runtime_error("the archive could not be unpacked");
}

// Writes what `read` gives, piece by piece, until that is nothing.
template <class Read>
void WriteFile(const std::string& path, Read&& read) {
  static std::array<char, kPiece> piece;
  const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
  if (file < 0) fs::create_directories(fs::path(path).parent_path());
  const int opened =
      file >= 0 ? file : ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
  Check(opened >= 0);
  for (;;) {
    const auto count = static_cast<ssize_t>(read(piece.data(), piece.size()));
    Check(count >= 0);
    if (count == 0) break;
    Check(::write(opened, piece.data(), static_cast<std::size_t>(count)) == count);
  }
  ::close(opened);
}

void UnpackWithLibzip(const std::string& archive, const std::string& directory) {
  zip_t* const zip = ::zip_open(archive.c_str(), ZIP_RDONLY, nullptr);
  Check(zip != nullptr);
  const zip_int64_t count = ::zip_get_num_entries(zip, 0);
  for (zip_uint64_t i = 0; i < static_cast<zip_uint64_t>(count); ++i) {
    const std::string path = directory + '/' + ::zip_get_name(zip, i, ZIP_FL_ENC_RAW);
    if (path.ends_with('/')) {
      fs::create_directories(path);
      continue;
    }
    zip_file_t* const file = ::zip_fopen_index(zip, i, 0);
    Check(file != nullptr);
    WriteFile(path, [&](char* piece, std::size_t size) { return ::zip_fread(file, piece, size); });
    Check(::zip_fclose(file) == 0);
  }
  ::zip_discard(zip);
}

void UnpackWithMinizip(const std::string& archive, const std::string& directory) {
  const unzFile zip = ::unzOpen64(archive.c_str());
  Check(zip != nullptr);
  for (int result = ::unzGoToFirstFile(zip); result == UNZ_OK; result = ::unzGoToNextFile(zip)) {
    std::array<char, 4096> name{};
    Check(::unzGetCurrentFileInfo64(zip, nullptr, name.data(), name.size() - 1, nullptr, 0, nullptr,
                                    0) == UNZ_OK);
    const std::string path = directory + '/' + name.data();
    if (path.ends_with('/')) {
      fs::create_directories(path);
      continue;
    }
    Check(::unzOpenCurrentFile(zip) == UNZ_OK);
    WriteFile(path, [&](char* piece, std::size_t size) {
      return ::unzReadCurrentFile(zip, piece, static_cast<unsigned>(size));
    });
    Check(::unzCloseCurrentFile(zip) == UNZ_OK);
  }
  ::unzClose(zip);
}

void Unpack(const std::string& library, const std::string& archive, const std::string& directory) {
  if (library == "libzip") return UnpackWithLibzip(archive, directory);
  if (library == "minizip") return UnpackWithMinizip(archive, directory);
  Check(Velmora::CreateNativeCompressedFileService()->Extract(
      archive, Velmora::CompressedFileType::Zip, directory));
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 4) return EXIT_FAILURE;
  try {
    Unpack(arguments[1], arguments[2], arguments[3]);
    return EXIT_SUCCESS;
  } catch (const std::exception& error) {
    std::cerr << error.what() << '\n';
    return EXIT_FAILURE;
  }
}
