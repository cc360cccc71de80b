// Our unpacking beside that of tools and libraries, each in a process of its own, so that all pay
// for their start. The archives are made by zip when they are first needed.

#include <cstdint>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "TemporaryFolder.h"

namespace {

namespace fs = std::filesystem;

constexpr std::size_t kMegabyte = 1'000'000;

// Runs a program to its end, with its output thrown away.
void Run(std::vector<std::string> arguments) {
  posix_spawn_file_actions_t actions;
  ::posix_spawn_file_actions_init(&actions);
  ::posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  std::vector<char*> pointers;
  for (std::string& argument : arguments) pointers.push_back(argument.data());
  pointers.push_back(nullptr);
  pid_t process = -1;
  const int error =
      ::posix_spawnp(&process, pointers[0], &actions, nullptr, pointers.data(), environ);
  ::posix_spawn_file_actions_destroy(&actions);
  int status = 0;
  if (error != 0 || ::waitpid(process, &status, 0) != process || status != 0) {
    throw std::runtime_error(arguments[0] + " failed");
  }
}

class Archives {
 public:
  static const Archives& Get() {
    static const Archives archives;
    return archives;
  }

  std::string PathOf(const std::string& name) const { return folder_.PathOf(name + ".zip"); }

  // A place to unpack to, where nothing is yet.
  std::string Destination() const { return folder_.PathOf("out"); }

 private:
  Archives() {
    std::ofstream large(Source("large"), std::ios::binary);
    for (std::uint64_t i = 0; large.tellp() < static_cast<std::streamoff>(100 * kMegabyte); ++i) {
      large << "{\"event\":" << i << ",\"name\":\"addToCart\",\"sku\":\"A-" << i * 7919 % 10'000
            << "\",\"price\":" << i % 997 << ".90}\n";
    }
    large.close();
    for (int i = 0; i < 5'000; ++i) {
      std::ofstream(Source("small/" + std::to_string(i % 50) + "/" + std::to_string(i)))
          << std::string(static_cast<std::size_t>(i % 40) * 50, 's') << "contents of " << i;
    }
    std::ofstream stored(Source("stored"), std::ios::binary);
    std::uint64_t state = 1;
    for (std::size_t i = 0; i < 200 * kMegabyte / sizeof(state); ++i) {
      state = state * 6364136223846793005U + 1442695040888963407U;
      stored.write(reinterpret_cast<const char*>(&state), sizeof(state));
    }
    stored.close();
    fs::current_path(folder_.Path());
    Run({"zip", "-q", PathOf("large"), "large"});
    Run({"zip", "-qr", PathOf("small"), "small"});
    Run({"zip", "-q0", PathOf("stored"), "stored"});
  }

  std::string Source(const std::string& name) const {
    const std::string path = folder_.PathOf(name);
    fs::create_directories(fs::path(path).parent_path());
    return path;
  }

  TemporaryFolder folder_;
};

using Command = std::vector<std::string> (*)(const std::string& archive, const std::string& to);

std::vector<std::string> Ours(const std::string& archive, const std::string& to) {
  return {UNPACK_PROGRAM, "ours", archive, to};
}
std::vector<std::string> Libzip(const std::string& archive, const std::string& to) {
  return {UNPACK_PROGRAM, "libzip", archive, to};
}
std::vector<std::string> Minizip(const std::string& archive, const std::string& to) {
  return {UNPACK_PROGRAM, "minizip", archive, to};
}
std::vector<std::string> Unzip(const std::string& archive, const std::string& to) {
  return {"unzip", "-qq", archive, "-d", to};
}
std::vector<std::string> Bsdtar(const std::string& archive, const std::string& to) {
  return {"bsdtar", "-xf", archive, "-C", to};
}
std::vector<std::string> SevenZip(const std::string& archive, const std::string& to) {
  return {"7z", "x", "-bd", "-y", "-o" + to, archive};
}

void Unpack(benchmark::State& state, const std::string& archive, Command command) {
  const Archives& archives = Archives::Get();
  const std::string destination = archives.Destination();
  for (auto _ : state) {
    state.PauseTiming();
    fs::remove_all(destination);
    fs::create_directory(destination);
    state.ResumeTiming();
    Run(command(archives.PathOf(archive), destination));
  }
  fs::remove_all(destination);
}

void RegisterAll() {
  const std::pair<const char*, Command> programs[] = {{"Ours", Ours},     {"Unzip", Unzip},
                                                      {"Bsdtar", Bsdtar}, {"7z", SevenZip},
                                                      {"Libzip", Libzip}, {"Minizip", Minizip}};
  for (const char* archive : {"large", "small", "stored"}) {
    for (const auto& [name, command] : programs) {
      benchmark::RegisterBenchmark((std::string("Unpack") + name + "/" + archive).c_str(),
                                   [archive, command = command](benchmark::State& state) {
                                     Unpack(state, archive, command);
                                   })
          ->Iterations(1)
          ->UseRealTime()
          ->Unit(benchmark::kMillisecond);
    }
  }
}

[[maybe_unused]] const bool kRegistered = (RegisterAll(), true);

}  // namespace
