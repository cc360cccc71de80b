// Prints the nanoseconds that the first GetCore() of a process takes: bridge, services and core.

#include <chrono>
#include <iostream>

#include <QEXCore_iOS/GetCore.h>

int main() {
  const auto start = std::chrono::steady_clock::now();
  const auto core = GetCore();
  const auto end = std::chrono::steady_clock::now();
  std::cout << std::chrono::duration_cast<std::chrono::nanoseconds>(end - start).count() << '\n';
}
