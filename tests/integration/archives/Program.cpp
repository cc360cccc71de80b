#include "Program.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <system_error>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

void Require(int error, const char* what) {
  if (error != 0) throw std::system_error(error, std::generic_category(), what);
}

}  // namespace

Program::Program(std::vector<std::string> arguments, const std::string& directory) {
  output_ = ::memfd_create("output", MFD_CLOEXEC);
  Require(output_ < 0 ? errno : 0, "memfd_create");

  posix_spawn_file_actions_t actions;
  Require(::posix_spawn_file_actions_init(&actions), "posix_spawn_file_actions_init");
  Require(::posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0),
          "open");
  Require(::posix_spawn_file_actions_adddup2(&actions, output_, STDOUT_FILENO), "dup2");
  Require(::posix_spawn_file_actions_adddup2(&actions, output_, STDERR_FILENO), "dup2");
  Require(::posix_spawn_file_actions_addchdir_np(&actions, directory.c_str()), "chdir");
  std::vector<char*> pointers;
  for (std::string& argument : arguments) pointers.push_back(argument.data());
  pointers.push_back(nullptr);
  const int error =
      ::posix_spawnp(&process_, pointers[0], &actions, nullptr, pointers.data(), environ);
  ::posix_spawn_file_actions_destroy(&actions);
  Require(error, pointers[0]);
}

Program::~Program() {
  if (process_ > 0) {
    Kill();
    Wait();
  }
  ::close(output_);
}

void Program::Kill() { ::kill(process_, SIGKILL); }

int Program::Wait() {
  int status = 0;
  while (::waitpid(process_, &status, 0) < 0 && errno == EINTR) {
  }
  process_ = -1;
  return WIFSIGNALED(status) ? -WTERMSIG(status) : WEXITSTATUS(status);
}

std::string Program::Output() const {
  std::string text;
  std::array<char, 4096> piece{};
  for (off_t offset = 0;;) {
    const ssize_t count = ::pread(output_, piece.data(), piece.size(), offset);
    if (count <= 0) return text;
    text.append(piece.data(), static_cast<std::size_t>(count));
    offset += count;
  }
}

void RunShell(const std::string& line, const std::string& directory, int highestStatus) {
  Program shell({"/bin/sh", "-c", "export LC_ALL=C.UTF-8\n" + line}, directory);
  const int status = shell.Wait();
  EXPECT_TRUE(status >= 0 && status <= highestStatus) << line << "\nended with " << status << ":\n"
                                                      << shell.Output();
}
