#pragma once

#include <string>
#include <vector>

#include <sys/types.h>

// A program that runs beside the test, with its standard output in a file, until it ends by itself
// or the object goes, which ends it and waits for it.
class ChildProgram {
 public:
  // `outputPath` empty: the output is dropped. Throws std::system_error when it cannot be started.
  ChildProgram(std::vector<std::string> arguments, const std::string& outputPath);
  ~ChildProgram();
  ChildProgram(const ChildProgram&) = delete;
  ChildProgram& operator=(const ChildProgram&) = delete;

  void Signal(int number) const;

  // Whether it has ended by now.
  bool HasEnded();

  // Waits for its end, a minute at most; then it is killed and the test fails. Its exit status, or
  // minus the number of the signal that ended it.
  int Wait();

 private:
  void TakeStatus(int status);

  pid_t process_ = -1;
  int result_ = 0;  // once process_ is -1
};

// A port of 127.0.0.1 at which nobody listened a moment ago.
int FreePort();
