#pragma once

#include <cstdlib>
#include <optional>
#include <string>

namespace TestSupport {

// Sets an environment variable for as long as the object lives, then puts back what was there. For
// tests that run on one thread.
class ScopedEnvironment {
 public:
  // Nothing: the variable is taken away.
  ScopedEnvironment(std::string name, const std::optional<std::string>& value)
      : name_(std::move(name)) {
    if (const char* former = std::getenv(name_.c_str())) former_ = former;
    Put(value);
  }
  ~ScopedEnvironment() { Put(former_); }
  ScopedEnvironment(const ScopedEnvironment&) = delete;
  ScopedEnvironment& operator=(const ScopedEnvironment&) = delete;

 private:
  void Put(const std::optional<std::string>& value) const {
    if (value) {
      ::setenv(name_.c_str(), value->c_str(), 1);
    } else {
      ::unsetenv(name_.c_str());
    }
  }

  const std::string name_;
  std::optional<std::string> former_;
};

}  // namespace TestSupport
