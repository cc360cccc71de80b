// The listing of a directory of 100,000 files beside a loop over readdir that gathers the names.

#include <fstream>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>
#include <dirent.h>

#include "TemporaryFolder.h"
#include "services/filesystem/NativeFileSystemService.h"

namespace {

constexpr std::size_t kFiles = 100'000;

const TemporaryFolder& FolderOfManyFiles() {
  static const TemporaryFolder folder;
  static const bool isFilled = [] {
    for (std::size_t i = 0; i < kFiles; ++i) {
      std::ofstream file(folder.PathOf("file-" + std::to_string(i) + ".json"));
    }
    return true;
  }();
  if (!isFilled) throw std::runtime_error("no files");
  return folder;
}

void ListDirectory(benchmark::State& state) {
  const std::string& path = FolderOfManyFiles().Path();
  const auto service = Velmora::CreateNativeFileSystemService();
  for (auto _ : state) {
    const auto names = service->GetDirectoryContents(path);
    if (names.size() != kFiles) throw std::runtime_error("files are missing");
    benchmark::DoNotOptimize(names.data());
  }
}

void ListDirectoryRaw(benchmark::State& state) {
  const std::string& path = FolderOfManyFiles().Path();
  for (auto _ : state) {
    std::vector<std::string> names;
    DIR* const directory = ::opendir(path.c_str());
    while (const dirent* const entry = ::readdir(directory)) {
      const std::string_view name = entry->d_name;
      if (name != "." && name != "..") names.emplace_back(name);
    }
    ::closedir(directory);
    if (names.size() != kFiles) throw std::runtime_error("files are missing");
    benchmark::DoNotOptimize(names.data());
  }
}

void ListDirectoryRawCount(benchmark::State& state) {
  const std::string& path = FolderOfManyFiles().Path();
  for (auto _ : state) {
    std::size_t count = 0;
    DIR* const directory = ::opendir(path.c_str());
    while (::readdir(directory) != nullptr) ++count;
    ::closedir(directory);
    benchmark::DoNotOptimize(count);
  }
}

BENCHMARK(ListDirectory)->Unit(benchmark::kMillisecond);
BENCHMARK(ListDirectoryRaw)->Unit(benchmark::kMillisecond);
BENCHMARK(ListDirectoryRawCount)->Unit(benchmark::kMillisecond);

}  // namespace
