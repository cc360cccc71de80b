#pragma once

#include <cstdint>
#include <string>

#include "QEXCore_iOS/Platform/Value.h"

// What the writing worker stores, so that a reader can tell whether it is whole.
namespace WorkerValues {

inline constexpr std::int64_t kKeys = 50;

// The key of the write of that number; every fiftieth write has the same.
inline std::string KeyOf(std::int64_t number) { return "k" + std::to_string(number % kKeys); }

inline Platform::Value ValueOf(std::int64_t number) {
  const auto length = static_cast<std::size_t>(number * 37 % 3000);
  return {{"number", number},
          {"filler", std::string(length, static_cast<char>('a' + number % 26))}};
}

// Takes so long to commit that others run meanwhile.
inline Platform::Value LargeValueOf(std::int64_t number) {
  return {{"number", number}, {"filler", std::string(1'000'000, 'x')}};
}

}  // namespace WorkerValues
