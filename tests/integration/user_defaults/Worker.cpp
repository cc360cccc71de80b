// A process that uses user defaults at the same time as the test that started it.
//
//   write <folder> <first>             stores values numbered from <first> on until it is killed,
//                                      and tells each number on standard output when it is stored
//   stress <folder> <board> <process>  eight threads that write and read; prints what went wrong
//   pace <folder> <board>              writes counts, each when the one before it has been seen
//   hold <database>                    keeps the write lock until standard input ends
//   scribble <database>                overwrites all but the first page

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <sched.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

#include "StressBoard.h"
#include "WorkerValues.h"
#include "platform/linux/SqliteUserDefaultsProvider.h"

namespace {

// Whatever user defaults have to log is a failure here.
class FatalLog final : public Platform::SystemLog {
 public:
  void Write(std::string_view line) override {
    std::fprintf(stderr, "worker: %.*s\n", static_cast<int>(line.size()), line.data());
    ::_exit(3);
  }
};

std::shared_ptr<Platform::UserDefaults> OpenStandard(const std::string& folder) {
  Platform::SqliteUserDefaultsProvider provider({folder, folder}, std::make_shared<FatalLog>());
  return provider.Standard();
}

int WriteUntilKilled(const std::string& folder, std::int64_t first) {
  const auto defaults = OpenStandard(folder);
  for (std::int64_t number = first;; ++number) {
    defaults->SetObject(WorkerValues::KeyOf(number), WorkerValues::ValueOf(number));
    if (::write(STDOUT_FILENO, &number, sizeof(number)) != sizeof(number)) return 1;
  }
}

// Writes counts under one key and checks that no key, of whatever thread and process, shows an
// older count than its writer was told to be stored.
void WriteAndRead(Platform::UserDefaults& defaults, StressBoard& board, std::size_t own,
                  std::atomic<int>& staleReads) {
  constexpr std::int64_t kWrites = 400;
  constexpr int kReadsPerWrite = 40;
  std::minstd_rand random(static_cast<unsigned>(own) + 1);
  for (std::int64_t count = 1; count <= kWrites; ++count) {
    defaults.SetObject(StressBoard::KeyOf(own), count);
    board.stored[own].store(count);
    for (int read = 0; read < kReadsPerWrite; ++read) {
      const std::size_t other = random() % StressBoard::kKeys;
      const std::int64_t atLeast = board.stored[other].load();
      if (defaults.ObjectForKey(StressBoard::KeyOf(other)).AsInt64() < atLeast) ++staleReads;
    }
  }
}

int Stress(const std::string& folder, const std::string& boardPath, std::size_t process) {
  const auto defaults = OpenStandard(folder);
  const StressBoard::Mapping board(boardPath);
  std::atomic<int> staleReads{0};
  {
    std::vector<std::jthread> threads;
    for (std::size_t thread = 0; thread < StressBoard::kThreads; ++thread) {
      threads.emplace_back([&, own = process * StressBoard::kThreads + thread] {
        WriteAndRead(*defaults, *board, own, staleReads);
      });
    }
  }
  std::printf("%d stale reads\n", staleReads.load());
  return staleReads == 0 ? 0 : 1;
}

int Pace(const std::string& folder, const std::string& boardPath) {
  const auto defaults = OpenStandard(folder);
  const StressBoard::Mapping board(boardPath);
  for (std::int64_t count = 1; count <= StressBoard::kPacedWrites; ++count) {
    defaults->SetObject(StressBoard::KeyOf(0), WorkerValues::LargeValueOf(count));
    board->stored[0].store(count);
    while (board->seen.load() < count) ::sched_yield();
  }
  return 0;
}

int HoldLock(const std::string& database) {
  sqlite3* connection = nullptr;
  if (::sqlite3_open(database.c_str(), &connection) != SQLITE_OK ||
      ::sqlite3_exec(connection, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr) != SQLITE_OK) {
    return 1;
  }
  std::puts("held");
  std::fflush(stdout);
  while (std::getchar() != EOF) {
  }
  return ::sqlite3_close(connection) == SQLITE_OK ? 0 : 1;
}

int Scribble(const std::string& database) {
  constexpr off_t kPage = 4096;
  const int file = ::open(database.c_str(), O_RDWR | O_CLOEXEC);
  struct stat status {};
  if (file < 0 || ::fstat(file, &status) != 0) return 1;
  const std::vector<char> noise(kPage, '\x5A');
  for (off_t page = kPage; page < status.st_size; page += kPage) {
    if (::pwrite(file, noise.data(), noise.size(), page) != kPage) return 1;
  }
  return ::close(file) == 0 ? 0 : 1;
}

}  // namespace

int main(int count, char** arguments) {
  const std::vector<std::string> given(arguments + 1, arguments + count);
  if (given.size() == 3 && given[0] == "write")
    return WriteUntilKilled(given[1], std::stol(given[2]));
  if (given.size() == 4 && given[0] == "stress") {
    return Stress(given[1], given[2], std::stoul(given[3]));
  }
  if (given.size() == 3 && given[0] == "pace") return Pace(given[1], given[2]);
  if (given.size() == 2 && given[0] == "hold") return HoldLock(given[1]);
  if (given.size() == 2 && given[0] == "scribble") return Scribble(given[1]);
  return 64;
}
