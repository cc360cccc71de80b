#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include <sys/types.h>

// The worker program, running with the given arguments until it ends, is killed or the object goes.
class WorkerProcess {
 public:
  explicit WorkerProcess(std::vector<std::string> arguments);
  ~WorkerProcess();
  WorkerProcess(const WorkerProcess&) = delete;
  WorkerProcess& operator=(const WorkerProcess&) = delete;

  // Reads exactly `size` bytes of its standard output; false when that ends before.
  bool Read(void* buffer, std::size_t size);

  // The rest of its standard output.
  std::string ReadAll();

  // Ends its standard input.
  void CloseInput();

  void Kill();

  // Waits for its end. Its exit status, or minus the number of the signal that ended it.
  int Wait();

 private:
  pid_t process_ = -1;
  int input_ = -1;
  int output_ = -1;
};
