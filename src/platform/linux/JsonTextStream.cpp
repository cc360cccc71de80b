#include "platform/linux/JsonTextStream.h"

#include <algorithm>
#include <cstdint>
#include <utility>

#include "QEXCore_iOS/Platform/Utf8.h"

namespace Platform {
namespace {

constexpr std::size_t kFirstCapacity = 1024;

// A word of eight times the byte.
constexpr std::uint64_t Eight(unsigned char byte) { return 0x0101010101010101U * byte; }

bool IsPlain(char c) { return static_cast<unsigned char>(c) >= 0x20 && c != '"' && c != '\\'; }

// Not zero where one of eight bytes is zero.
constexpr std::uint64_t ZeroBytes(std::uint64_t word) {
  return (word - Eight(1)) & ~word & Eight(0x80);
}

// Not zero where one of eight bytes needs an escape.
constexpr std::uint64_t BytesToEscape(std::uint64_t word) {
  const std::uint64_t controls = (word - Eight(0x20)) & ~word & Eight(0x80);
  return controls | ZeroBytes(word ^ Eight('"')) | ZeroBytes(word ^ Eight('\\'));
}

// Copies a text as it is, and notes what must be known of it.
class SurveyingCopy {
 public:
  SurveyingCopy(std::string_view from, char* to) {
    const std::size_t size = from.size();
    if (size >= sizeof(std::uint64_t)) {
      CopyWords<std::uint64_t>(from.data(), to, size);
    } else if (size >= sizeof(std::uint32_t)) {
      CopyWords<std::uint32_t>(from.data(), to, size);
    } else {
      for (std::size_t i = 0; i < size; ++i) CopyWord<std::uint8_t>(from.data() + i, to + i);
    }
  }

  bool IsPlain() const { return toEscape_ == 0; }
  bool IsAscii() const { return (seen_ & Eight(0x80)) == 0; }

 private:
  // At least one word. The last is taken from the end, so that some bytes may be copied twice.
  template <class Word>
  void CopyWords(const char* from, char* to, std::size_t size) {
    const std::size_t last = size - sizeof(Word);
    for (std::size_t i = 0; i < last; i += sizeof(Word)) CopyWord<Word>(from + i, to + i);
    CopyWord<Word>(from + last, to + last);
  }

  template <class Word>
  void CopyWord(const char* from, char* to) {
    Word word = 0;
    std::memcpy(&word, from, sizeof word);
    std::memcpy(to, &word, sizeof word);
    seen_ |= word;
    // The bytes that a short word lacks become plain ones.
    toEscape_ |= BytesToEscape(word | Filling(sizeof(Word)));
  }

  // Blanks for all but the first bytes of a word.
  static constexpr std::uint64_t Filling(std::size_t bytes) {
    return bytes == sizeof(std::uint64_t) ? 0 : Eight(' ') << (8 * bytes);
  }

  std::uint64_t seen_ = 0;  // the bits of all bytes
  std::uint64_t toEscape_ = 0;
};

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
  Reserve(content.size() + 2);
  PutUnsafe('"');
  const SurveyingCopy copy(content, end_);
  if (copy.IsPlain()) {
    end_ += content.size();
  } else {
    PutOneByOne(content);
  }
  Put('"');
  return copy.IsAscii() || IsValidUtf8(content);
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
