#include "ChildProgram.h"

#include <cerrno>
#include <chrono>
#include <csignal>
#include <system_error>

#include <arpa/inet.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include "support/WaitUntil.h"

ChildProgram::ChildProgram(std::vector<std::string> arguments, const std::string& outputPath) {
  const std::string output = outputPath.empty() ? "/dev/null" : outputPath;
  std::vector<char*> pointers;
  for (std::string& argument : arguments) pointers.push_back(argument.data());
  pointers.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  ::posix_spawn_file_actions_init(&actions);
  ::posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, output.c_str(),
                                     O_WRONLY | O_CREAT | O_TRUNC, 0600);
  const int error =
      ::posix_spawnp(&process_, pointers[0], &actions, nullptr, pointers.data(), environ);
  ::posix_spawn_file_actions_destroy(&actions);
  if (error != 0) throw std::system_error(error, std::generic_category(), arguments[0]);
}

ChildProgram::~ChildProgram() {
  Signal(SIGTERM);
  Signal(SIGCONT);  // one that was stopped hears the other only now
  Wait();
}

void ChildProgram::Signal(int number) const {
  if (process_ > 0) ::kill(process_, number);
}

bool ChildProgram::HasEnded() {
  int status = 0;
  if (process_ > 0 && ::waitpid(process_, &status, WNOHANG) == process_) TakeStatus(status);
  return process_ < 0;
}

int ChildProgram::Wait() {
  constexpr std::chrono::seconds kPatience{60};
  if (!TestSupport::WaitUntil([this] { return HasEnded(); }, kPatience)) {
    ADD_FAILURE() << "process " << process_ << " did not end in time";
    Signal(SIGKILL);
    int status = 0;
    ::waitpid(process_, &status, 0);
    TakeStatus(status);
  }
  return result_;
}

void ChildProgram::TakeStatus(int status) {
  process_ = -1;
  result_ = WIFSIGNALED(status) ? -WTERMSIG(status) : WEXITSTATUS(status);
}

int FreePort() {
  const int socket = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = ::htonl(INADDR_LOOPBACK);
  socklen_t length = sizeof address;
  auto* plain = reinterpret_cast<sockaddr*>(&address);
  const bool isBound =
      ::bind(socket, plain, length) == 0 && ::getsockname(socket, plain, &length) == 0;
  const int error = errno;
  ::close(socket);
  if (!isBound) throw std::system_error(error, std::generic_category(), "bind");
  return ::ntohs(address.sin_port);
}
