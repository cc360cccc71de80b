// Unpacks an archive again and again, until it is killed or the archive fails. Then prints the code
// and the message of the error, and whether a file was left open.
//
//   archive_worker <archive> <destination>

#include <filesystem>
#include <iostream>
#include <iterator>

#include "VelmoraCore/SdkError.h"
#include "services/filesystem/NativeCompressedFileService.h"

namespace {

namespace fs = std::filesystem;

std::size_t OpenFiles() {
  const fs::directory_iterator descriptors("/proc/self/fd");
  return static_cast<std::size_t>(std::distance(begin(descriptors), end(descriptors)));
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 3) return 2;
  const auto service = Velmora::CreateNativeCompressedFileService();
  const std::size_t before = OpenFiles();
  try {
    while (service->Extract(arguments[1], Velmora::CompressedFileType::Zip, arguments[2])) {
    }
  } catch (const Velmora::SdkError& error) {
    std::cout << error.what() << '\n';
  }
  if (OpenFiles() != before) std::cout << "a file was left open\n";
}
