#include "platform/linux/LinuxProcessInfo.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <initializer_list>
#include <memory>
#include <string_view>
#include <utility>

#include <cxxabi.h>
#include <dlfcn.h>
#include <execinfo.h>
#include <pthread.h>
#include <sys/utsname.h>
#include <unistd.h>

#include "platform/linux/OsRelease.h"

namespace Platform {
namespace {

struct FreeMemory {
  void operator()(void* memory) const { std::free(memory); }
};
using CText = std::unique_ptr<char, FreeMemory>;

// The build identifier is found as the last piece between blanks, so none may hold a blank.
std::string WithoutBlanks(std::string text) {
  std::replace(text.begin(), text.end(), ' ', '-');
  return text;
}

std::string KernelRelease() {
  utsname kernel{};
  return ::uname(&kernel) == 0 ? kernel.release : "";
}

std::string FirstNotEmpty(std::initializer_list<std::string> texts) {
  for (const std::string& text : texts) {
    if (!text.empty()) return text;
  }
  return "0";
}

std::string_view FileNameOf(const char* path) {
  const std::string_view text = path != nullptr ? path : "";
  return text.substr(text.rfind('/') + 1);
}

std::string DescribeFunction(const Dl_info& info, std::uintptr_t address) {
  if (info.dli_sname == nullptr) return "?";
  int status = 0;
  const CText demangled(abi::__cxa_demangle(info.dli_sname, nullptr, nullptr, &status));
  const auto start = reinterpret_cast<std::uintptr_t>(info.dli_saddr);
  return std::string(demangled ? demangled.get() : info.dli_sname) + " + " +
         std::to_string(address - start);
}

std::string DescribeFrame(std::size_t number, void* frame) {
  const auto address = reinterpret_cast<std::uintptr_t>(frame);
  Dl_info info{};
  // A return address may already lie behind the end of the function that does not return.
  const bool isKnown = ::dladdr(static_cast<const char*>(frame) - 1, &info) != 0;
  const std::string file(isKnown ? FileNameOf(info.dli_fname) : "?");
  std::array<char, 64> place{};
  std::snprintf(place.data(), place.size(), " 0x%016llx ",
                static_cast<unsigned long long>(address));
  return std::to_string(number) + ' ' + file + place.data() +
         (isKnown ? DescribeFunction(info, address) : "?");
}

}  // namespace

LinuxProcessInfo::LinuxProcessInfo(std::string root) : root_(std::move(root)) {}

std::string LinuxProcessInfo::OperatingSystemVersionString() const {
  const auto osRelease = ReadOsRelease(root_);
  const auto valueOf = [&](const char* key) {
    const auto found = osRelease.find(key);
    return found == osRelease.end() ? std::string() : WithoutBlanks(found->second);
  };
  const std::string kernel = KernelRelease();
  const std::string version = FirstNotEmpty({valueOf("VERSION_ID"), kernel});
  const std::string build = FirstNotEmpty({valueOf("BUILD_ID"), kernel, version});
  return "Version " + version + " (Build " + build + ")";
}

__attribute__((noinline)) std::vector<std::string> LinuxProcessInfo::CallStackSymbols() const {
  constexpr std::size_t kMostFrames = 128;
  constexpr std::size_t kRoomForOwnFrames = 8;
  std::array<void*, kMostFrames + kRoomForOwnFrames> buffer{};
  const int count = ::backtrace(buffer.data(), static_cast<int>(buffer.size()));
  const auto end = buffer.begin() + count;
  // Tools that watch backtrace() add frames of their own before ours.
  auto frame = std::find(buffer.begin(), end, __builtin_return_address(0));
  if (frame == end) frame = buffer.begin() + std::min(count, 1);
  std::vector<std::string> symbols;
  for (; frame != end && symbols.size() < kMostFrames; ++frame) {
    symbols.push_back(DescribeFrame(symbols.size(), *frame));
  }
  return symbols;
}

std::int64_t LinuxProcessInfo::ProcessIdentifier() const noexcept { return ::getpid(); }

void LinuxProcessInfo::SetCurrentThreadName(const std::string& name) {
  ::pthread_setname_np(::pthread_self(), name.c_str());
}

}  // namespace Platform
