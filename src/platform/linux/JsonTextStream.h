#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>

namespace Platform {

// Takes what the JSON writer puts out. A stream as RapidJSON wants one. Its memory can be used
// again for another text.
class JsonTextStream {
 public:
  using Ch = char;

  // Indentation stops growing here, so that a short text that nests deeply does not become an
  // immense one.
  static constexpr std::size_t kMaximumBlanks = 64;

  void Put(char c) {
    Reserve(1);
    PutUnsafe(c);
  }

  // For room that was reserved before.
  void PutUnsafe(char c) { *end_++ = c; }

  void Flush() {}

  void Reserve(std::size_t count) {
    if (static_cast<std::size_t>(limit_ - end_) < count) Grow(count);
  }

  // Puts so many blanks, but no more than the maximum, for which room was reserved before.
  void PutBlanksUnsafe(std::size_t count) {
    std::memset(end_, ' ', kMaximumBlanks);
    end_ += std::min(count, kMaximumBlanks);
  }

  // Puts a string in its quotation marks, escaped where it must be. False when it is not UTF-8;
  // what was put is then of no use.
  bool PutQuoted(std::string_view content);

  std::string Text() const { return {buffer_.get(), Size()}; }

  void Clear() { end_ = buffer_.get(); }

  std::size_t Capacity() const { return static_cast<std::size_t>(limit_ - buffer_.get()); }

 private:
  std::size_t Size() const { return static_cast<std::size_t>(end_ - buffer_.get()); }
  void Grow(std::size_t count);
  void PutEscaped(char c);
  void PutOneByOne(std::string_view characters);

  std::unique_ptr<char[]> buffer_;
  char* end_ = nullptr;    // of what was put
  char* limit_ = nullptr;  // of the room
};

// What RapidJSON calls where it puts several characters at once.
inline void PutReserve(JsonTextStream& stream, std::size_t count) { stream.Reserve(count); }

inline void PutUnsafe(JsonTextStream& stream, char c) { stream.PutUnsafe(c); }

}  // namespace Platform
