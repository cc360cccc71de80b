#pragma once

#include <string>
#include <vector>

#include <sys/types.h>

// A program of its own, with nothing to read and with its output and errors in one file. Killed,
// if need be, when the object goes.
class Program {
 public:
  // Started in `directory`; `arguments` begin with the program. Throws std::system_error when it
  // cannot be started.
  Program(std::vector<std::string> arguments, const std::string& directory);
  ~Program();
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;

  void Kill();

  // Waits for its end. Its exit status, or minus the number of the signal that ended it.
  int Wait();

  // What it has written so far.
  std::string Output() const;

 private:
  pid_t process_ = -1;
  int output_ = -1;
};

// Runs a line of the shell in `directory`, with UTF-8 file names; fails the test, and shows the
// output, when its exit status is greater than `highestStatus`.
void RunShell(const std::string& line, const std::string& directory, int highestStatus = 0);
