#include "WorkerProcess.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

void Require(int error, const char* what) {
  if (error != 0) throw std::system_error(error, std::generic_category(), what);
}

void Close(int& descriptor) {
  if (descriptor >= 0) ::close(std::exchange(descriptor, -1));
}

}  // namespace

WorkerProcess::WorkerProcess(std::vector<std::string> arguments) {
  std::array<int, 2> input{};
  std::array<int, 2> output{};
  Require(::pipe2(input.data(), O_CLOEXEC) == 0 ? 0 : errno, "pipe2");
  Require(::pipe2(output.data(), O_CLOEXEC) == 0 ? 0 : errno, "pipe2");
  input_ = input[1];
  output_ = output[0];

  posix_spawn_file_actions_t actions;
  Require(::posix_spawn_file_actions_init(&actions), "posix_spawn_file_actions_init");
  Require(::posix_spawn_file_actions_adddup2(&actions, input[0], STDIN_FILENO), "dup2");
  Require(::posix_spawn_file_actions_adddup2(&actions, output[1], STDOUT_FILENO), "dup2");
  arguments.insert(arguments.begin(), WORKER_PROGRAM);
  std::vector<char*> pointers;
  for (std::string& argument : arguments) pointers.push_back(argument.data());
  pointers.push_back(nullptr);
  const int error =
      ::posix_spawn(&process_, WORKER_PROGRAM, &actions, nullptr, pointers.data(), environ);
  ::posix_spawn_file_actions_destroy(&actions);
  ::close(input[0]);
  ::close(output[1]);
  Require(error, WORKER_PROGRAM);
}

WorkerProcess::~WorkerProcess() {
  if (process_ > 0) {
    Kill();
    Wait();
  }
  Close(input_);
  Close(output_);
}

bool WorkerProcess::Read(void* buffer, std::size_t size) {
  auto* position = static_cast<char*>(buffer);
  while (size > 0) {
    const ssize_t count = ::read(output_, position, size);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return false;
    position += count;
    size -= static_cast<std::size_t>(count);
  }
  return true;
}

std::string WorkerProcess::ReadAll() {
  std::string text;
  for (char character = 0; Read(&character, 1);) text += character;
  return text;
}

void WorkerProcess::CloseInput() { Close(input_); }

void WorkerProcess::Kill() { ::kill(process_, SIGKILL); }

int WorkerProcess::Wait() {
  int status = 0;
  while (::waitpid(process_, &status, 0) < 0 && errno == EINTR) {
  }
  process_ = -1;
  return WIFSIGNALED(status) ? -WTERMSIG(status) : WEXITSTATUS(status);
}
