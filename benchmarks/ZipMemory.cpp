// Prints by how many bytes the resident memory of this process grows at most while it unpacks
// archives of every kind: large and compressible, large and stored, and one of 10,000 entries whose
// headers fill 240 MB.

#include <algorithm>
#include <fstream>
#include <functional>
#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>

#include <sys/wait.h>
#include <unistd.h>

#include "TemporaryFolder.h"
#include "services/filesystem/NativeCompressedFileService.h"
#include "services/filesystem/NativeFileSystemService.h"

namespace {

// A line of /proc/self/status, in bytes.
long StatusOf(const std::string& key) {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with(key + ":")) return std::stol(line.substr(key.size() + 1)) * 1024;
  }
  throw std::runtime_error(key + " is unknown");
}

void ForgetPeak() { std::ofstream("/proc/self/clear_refs") << '5'; }

// In a process of its own, whose memory does not count.
void Apart(const std::function<void()>& work) {
  const pid_t process = ::fork();
  if (process == 0) {
    work();
    ::_exit(0);
  }
  int status = 0;
  ::waitpid(process, &status, 0);
  if (status != 0) throw std::runtime_error("the archives could not be made");
}

void Add16(std::string& bytes, std::size_t number) {
  bytes += static_cast<char>(number & 0xFF);
  bytes += static_cast<char>((number >> 8) & 0xFF);
}

void Add32(std::string& bytes, std::size_t number) {
  Add16(bytes, number & 0xFFFF);
  Add16(bytes, number >> 16);
}

// An empty stored file "a" in both headers; what follows the version.
void AddCommonFields(std::string& bytes, std::size_t extraLength) {
  bytes.append(20, '\0');
  Add16(bytes, 1);
  Add16(bytes, extraLength);
}

void WriteArchiveOfLongHeaders(const std::string& path) {
  constexpr std::size_t kEntries = 10'000;
  constexpr std::size_t kExtra = 12'000;
  std::string bytes = "PK\x03\x04";
  Add16(bytes, 20);
  AddCommonFields(bytes, 0);
  bytes += "a";
  const std::size_t directory = bytes.size();
  for (std::size_t i = 0; i < kEntries; ++i) {
    bytes += "PK\x01\x02";
    Add16(bytes, 20);
    Add16(bytes, 20);
    AddCommonFields(bytes, kExtra);
    Add16(bytes, kExtra);
    bytes.append(12, '\0');
    bytes += "a" + std::string(2 * kExtra, 'x');
  }
  const std::size_t size = bytes.size() - directory;
  bytes += "PK\x05\x06";
  Add32(bytes, 0);
  Add16(bytes, kEntries);
  Add16(bytes, kEntries);
  Add32(bytes, size);
  Add32(bytes, directory);
  Add16(bytes, 0);
  std::ofstream(path, std::ios::binary) << bytes;
}

void MakeArchives(const TemporaryFolder& folder) {
  std::ofstream(folder.PathOf("zeros"), std::ios::binary) << std::string(100'000'000, '\0');
  std::string mixed(200'000'000, '\0');
  unsigned state = 1;
  for (char& byte : mixed) byte = static_cast<char>((state = state * 1664525U + 1013904223U) >> 24);
  std::ofstream(folder.PathOf("mixed"), std::ios::binary) << mixed;
  const std::string line = "cd '" + folder.Path() +
                           "' && zip -q large.zip zeros && zip -q0 stored.zip mixed"
                           " && rm zeros mixed";
  if (std::system(line.c_str()) != 0) ::_exit(1);
  WriteArchiveOfLongHeaders(folder.PathOf("headers.zip"));
}

}  // namespace

int main() {
  const TemporaryFolder folder;
  Apart([&] { MakeArchives(folder); });

  const auto service = Velmora::CreateNativeCompressedFileService();
  // The device is there before anything is unpacked.
  Velmora::CreateNativeFileSystemService()->IsDirectory(folder.Path());
  ForgetPeak();
  const long idle = StatusOf("VmRSS");
  for (const char* archive : {"large.zip", "stored.zip", "headers.zip"}) {
    service->Extract(folder.PathOf(archive), Velmora::CompressedFileType::Zip,
                     folder.PathOf("out"));
  }
  std::cout << StatusOf("VmHWM") - idle << '\n';
}
