#include "base/StackFrames.h"

#include <cstdlib>
#include <memory>

#include <execinfo.h>

namespace Velmora {
namespace {

constexpr std::size_t kOwnFrames = 1;

}  // namespace

StackFrames::StackFrames()
    : addresses_(),
      count_(static_cast<std::size_t>(
          ::backtrace(addresses_.data(), static_cast<int>(addresses_.size())))) {}

std::string StackFrames::ToText() const {
  if (count_ <= kOwnFrames) {
    return {};
  }
  const std::unique_ptr<char*, decltype(&std::free)> symbols(
      ::backtrace_symbols(addresses_.data(), static_cast<int>(count_)), &std::free);
  if (symbols == nullptr) {
    return {};
  }
  std::string text;
  for (std::size_t frame = kOwnFrames; frame < count_; ++frame) {
    text += symbols.get()[frame];
    text += '\n';
  }
  return text;
}

}  // namespace Velmora
