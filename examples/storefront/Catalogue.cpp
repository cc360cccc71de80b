// Unpacks the archive that the shop's catalogue is shipped in, and lists what was in it, as a core
// does with an archive that it has downloaded.
//
//   catalogue <archive> <directory>

#include <algorithm>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <string>
#include <vector>

#include "VelmoraCore/CompressedFileServiceInterface.h"
#include "VelmoraCore/FileSystemServiceInterface.h"
#include "bridge/PlatformServices.h"

namespace {

// Everything below `directory`, each file with its size.
void List(Velmora::FileSystemServiceInterface& files, const std::string& directory) {
  std::vector<std::string> left = {directory};
  while (!left.empty()) {
    const std::string path = left.back();
    left.pop_back();
    std::cout << "  " << path;
    if (!files.IsDirectory(path)) {
      std::cout << ", " << files.CreateFileHandler(path)->Size() << " bytes\n";
      continue;
    }
    std::cout << "/\n";
    auto names = files.GetDirectoryContents(path);
    std::sort(names.rbegin(), names.rend());
    const std::string below = path + files.GetPathSeparator();
    for (const std::string& name : names) left.push_back(below + name);
  }
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 3) {
    std::cerr << "usage: catalogue <archive> <directory>\n";
    return EXIT_FAILURE;
  }
  try {
    const auto services = Velmora::CreateNativePlatformServices();
    services->GetCompressedFileService()->Extract(arguments[1], Velmora::CompressedFileType::Zip,
                                                  arguments[2]);
    std::cout << "unpacked from " << arguments[1] << ":\n";
    List(*services->GetFileSystemService(), arguments[2]);
    return EXIT_SUCCESS;
  } catch (const std::exception& error) {
    std::cerr << "catalogue: " << error.what() << '\n';
    return EXIT_FAILURE;
  }
}
