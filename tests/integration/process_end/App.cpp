// An app that ends while the SDK is at work. Its argument says how: "return" from main, "exit" on a
// callback's thread, "fork", which ends a copy of the process first, "read", where an exit handler
// reads JSON, "queue", where the main queue is at work too, "queue-exit", where its work exits, or
// "queue-fork".
//
// Prints the threads of the SDK that still run when the app's static objects are destroyed.

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <future>
#include <string>
#include <string_view>
#include <thread>

#include <QEXCore_iOS/Platform/Host.h>
#include <QEXCore_iOS/QEXCore.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr int kEnded = 7;

class Witness {
 public:
  Witness() = default;
  Witness(const Witness&) = delete;
  Witness& operator=(const Witness&) = delete;

  ~Witness() {
    std::error_code error;
    for (const auto& task : std::filesystem::directory_iterator("/proc/self/task", error)) {
      std::string name;
      std::getline(std::ifstream(task.path() / "comm"), name);
      if (name.starts_with("Velmora") || name.starts_with("QEXMain")) std::puts(name.c_str());
    }
  }
};

// Made before the SDK, and so destroyed after whatever the SDK does when the process ends.
const Witness witness;

void KeepBusy() {
  for (int i = 0; i < 2'000; ++i) QEXCore::trackAction("work", {{"sku", "A-17"}, {"size", "M"}});
}

[[noreturn]] void WaitForTheEnd() {
  std::promise<void> neverKept;
  neverKept.get_future().wait_for(std::chrono::seconds(60));
  std::_Exit(EXIT_FAILURE);
}

[[noreturn]] void ExitOnACallbackThread() {
  QEXCore::start([] { std::exit(kEnded); });
  WaitForTheEnd();
}

// Gives the main queue work that never ends, and waits until it is at it.
void KeepTheMainQueueBusy() {
  const auto queue = Platform::Host::Current()->mainQueue;
  std::promise<void> begun;
  // Never destroyed, as what the device holds: a forked copy cannot take the queue's locks.
  [[maybe_unused]] static const auto* timer =
      queue->Repeat(std::chrono::milliseconds(1), [] {}).release();
  queue->Async([&] { begun.set_value(); });
  begun.get_future().get();
}

[[noreturn]] void ExitOnTheMainQueue() {
  Platform::Host::Current()->mainQueue->Async([] { std::exit(kEnded); });
  WaitForTheEnd();
}

bool EndACopy() {
  const pid_t copy = ::fork();
  if (copy == 0) std::exit(kEnded);
  int status = 0;
  return copy > 0 && ::waitpid(copy, &status, 0) == copy && WIFEXITED(status) &&
         WEXITSTATUS(status) == kEnded;
}

// What the device was made of must last as long as whatever is made after it.
void ReadJsonInAnExitHandler() {
  Platform::Host::Current();
  std::atexit([] {
    std::thread([] {
      const auto json = Platform::Host::Current()->jsonSerialization;
      if (json->Parse(R"({"sku": "A-17"})", nullptr).IsAbsent()) std::puts("no JSON");
    }).join();
  });
}

}  // namespace

int main(int count, char** arguments) {
  const std::string_view way = count > 1 ? arguments[1] : "";
  if (way == "read") ReadJsonInAnExitHandler();
  KeepBusy();
  if (way.starts_with("queue")) KeepTheMainQueueBusy();
  if (way == "queue-exit") ExitOnTheMainQueue();
  if (way == "queue-fork" && !EndACopy()) return EXIT_FAILURE;
  if (way == "exit") ExitOnACallbackThread();
  if (way == "fork" && !EndACopy()) return EXIT_FAILURE;
  return kEnded;
}
