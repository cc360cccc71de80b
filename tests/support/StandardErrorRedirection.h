#pragma once

#include <string>

#include "support/TemporaryDirectory.h"

namespace TestSupport {

// Leads the process's standard error elsewhere for as long as it lives.
class StandardErrorRedirection {
 public:
  // To `descriptor`, which stays the caller's; -1 closes standard error.
  explicit StandardErrorRedirection(int descriptor);
  ~StandardErrorRedirection();
  StandardErrorRedirection(const StandardErrorRedirection&) = delete;
  StandardErrorRedirection& operator=(const StandardErrorRedirection&) = delete;

 private:
  int former_;
};

// Collects what is written to standard error for as long as it lives.
class StandardErrorCapture {
 public:
  StandardErrorCapture();
  ~StandardErrorCapture();

  std::string Text() const;

 private:
  TemporaryDirectory folder_;
  int file_;
  StandardErrorRedirection redirection_;
};

}  // namespace TestSupport
