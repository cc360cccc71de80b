#include "platform/linux/JsonTextStream.h"

#include <algorithm>
#include <cstdint>
#include <utility>

#include "QEXCore_iOS/Platform/Utf8.h"

namespace Platform {
namespace {

constexpr std::size_t kFirstCapacity = 1024;
constexpr std::size_t kWordSize = sizeof(std::uint64_t);

// A word of eight times the byte.
constexpr std::uint64_t Eight(unsigned char byte) { return 0x0101010101010101U * byte; }

bool IsPlain(char c) { return static_cast<unsigned char>(c) >= 0x20 && c != '"' && c != '\\'; }

bool HasZeroByte(std::uint64_t word) { return ((word - Eight(1)) & ~word & Eight(0x80)) != 0; }

// True when none of eight bytes needs an escape.
bool ArePlain(std::uint64_t bytes) {
  const bool hasControl = ((bytes - Eight(0x20)) & ~bytes & Eight(0x80)) != 0;
  return !hasControl && !HasZeroByte(bytes ^ Eight('"')) && !HasZeroByte(bytes ^ Eight('\\'));
}

template <class Word>
std::uint64_t WordAt(const char* bytes) {
  Word word = 0;
  std::memcpy(&word, bytes, sizeof word);
  return word;
}

// What must be known of a text before it is put.
struct Survey {
  bool isPlain = true;     // nothing in it needs an escape
  std::uint64_t seen = 0;  // the bits of all bytes

  void Take(std::uint64_t word) {
    seen |= word;
    isPlain = isPlain && ArePlain(word);
  }
};

Survey Look(std::string_view text) {
  Survey survey;
  const char* const end = text.data() + text.size();
  if (text.size() >= kWordSize) {
    for (const char* at = text.data(); end - at > std::ptrdiff_t{kWordSize}; at += kWordSize) {
      survey.Take(WordAt<std::uint64_t>(at));
    }
    // Some bytes are seen twice, which does no harm.
    survey.Take(WordAt<std::uint64_t>(end - kWordSize));
    return survey;
  }
  constexpr std::size_t kHalf = sizeof(std::uint32_t);
  if (text.size() >= kHalf) {
    survey.Take(WordAt<std::uint32_t>(text.data()) | WordAt<std::uint32_t>(end - kHalf)
                                                         << (8 * kHalf));
    return survey;
  }
  for (const char c : text) survey.Take(Eight(static_cast<unsigned char>(c)));
  return survey;
}

// The letter of a short escape, or 0 where there is none.
char ShortEscape(char c) {
  switch (c) {
    case '"':
    case '\\':
      return c;
    case '\b':
      return 'b';
    case '\f':
      return 'f';
    case '\n':
      return 'n';
    case '\r':
      return 'r';
    case '\t':
      return 't';
    default:
      return 0;
  }
}

}  // namespace

bool JsonTextStream::PutQuoted(std::string_view content) {
  const Survey survey = Look(content);
  Reserve(content.size() + 2);
  PutUnsafe('"');
  if (survey.isPlain) {
    std::copy(content.begin(), content.end(), end_);
    end_ += content.size();
  } else {
    PutOneByOne(content);
  }
  Put('"');
  return (survey.seen & Eight(0x80)) == 0 || IsValidUtf8(content);
}

void JsonTextStream::PutOneByOne(std::string_view characters) {
  for (const char c : characters) {
    if (IsPlain(c)) {
      Put(c);
    } else {
      PutEscaped(c);
    }
  }
}

void JsonTextStream::PutEscaped(char c) {
  constexpr const char* kHexDigits = "0123456789ABCDEF";
  Reserve(6);
  PutUnsafe('\\');
  if (const char letter = ShortEscape(c)) return PutUnsafe(letter);
  const auto code = static_cast<unsigned char>(c);
  PutUnsafe('u');
  PutUnsafe('0');
  PutUnsafe('0');
  PutUnsafe(kHexDigits[code >> 4U]);
  PutUnsafe(kHexDigits[code & 0xFU]);
}

void JsonTextStream::Grow(std::size_t count) {
  const std::size_t size = Size();
  const std::size_t capacity = std::max({kFirstCapacity, Capacity() * 2, size + count});
  auto larger = std::make_unique_for_overwrite<char[]>(capacity);
  if (size > 0) std::memcpy(larger.get(), buffer_.get(), size);
  buffer_ = std::move(larger);
  end_ = buffer_.get() + size;
  limit_ = buffer_.get() + capacity;
}

}  // namespace Platform
