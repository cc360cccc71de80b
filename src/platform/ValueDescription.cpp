#include <array>
#include <charconv>
#include <cstdio>
#include <vector>

#include "QEXCore_iOS/Platform/Utf8.h"
#include "platform/ValueInternals.h"

namespace Platform {
namespace {

constexpr std::size_t kMostNesting = 64;
constexpr std::size_t kMostText = std::size_t{1} << 20;
constexpr std::size_t kMostDataBytes = 32;
constexpr std::string_view kOmission = "...";
constexpr std::string_view kReplacementCharacter = "\uFFFD";

template <class Number>
std::string NumberText(Number number) {
  std::array<char, 64> text{};
  const auto result = std::to_chars(text.data(), text.data() + text.size(), number);
  return {text.data(), result.ptr};
}

std::string TextOfNumber(const Value& number) {
  if (!ValueInternals::IsReal(number)) return NumberText(ValueInternals::IntegerOf(number));
  const NumberType type = *number.StorageType();
  const bool isSingle = type == NumberType::Float32 || type == NumberType::Float;
  return isSingle ? NumberText(number.AsFloat()) : NumberText(number.AsDouble());
}

std::string TextOfData(const std::vector<std::uint8_t>& bytes) {
  std::string text = "<";
  text += std::to_string(bytes.size());
  text += " bytes";
  for (std::size_t i = 0; i < bytes.size() && i < kMostDataBytes; ++i) {
    std::array<char, 8> digits{};
    std::snprintf(digits.data(), digits.size(), i == 0 ? ": %02x" : "%02x", bytes[i]);
    text += digits.data();
  }
  if (bytes.size() > kMostDataBytes) text += kOmission;
  return text + ">";
}

// Builds the text of a value with a stack of its own: one frame for each container that is open.
class Describer {
 public:
  std::string Describe(const Value& value) {
    if (value.IsString()) {
      AppendPlain(value.AsStringView());
    } else {
      Begin(value);
    }
    while (!frames_.empty() && !IsFull()) Resume(frames_.back());
    if (IsFull()) CutToLimit();
    return std::move(text_);
  }

 private:
  struct Frame {
    const Value* container;
    std::size_t position = 0;        // of the array element to come
    DictionaryEntries::Iterator at;  // the dictionary entry to come
    bool keyIsDone = false;
  };

  bool IsFull() const { return text_.size() > kMostText; }

  void Begin(const Value& value) {
    switch (value.Kind()) {
      case ValueKind::String:
        AppendQuoted(value.AsStringView());
        break;
      case ValueKind::Array:
      case ValueKind::Dictionary:
        BeginContainer(value);
        break;
      case ValueKind::Object:
        AppendPlain(value.AsObject()->Description());
        break;
      default:
        text_ += TextOfSimple(value);
        break;
    }
  }

  static std::string TextOfSimple(const Value& value) {
    switch (value.Kind()) {
      case ValueKind::Number:
        return TextOfNumber(value);
      case ValueKind::Boolean:
        return value.AsBool() ? "true" : "false";
      case ValueKind::Data:
        return TextOfData(value.AsData());
      case ValueKind::Null:
        return "<null>";
      default:
        return "(null)";
    }
  }

  void BeginContainer(const Value& container) {
    if (frames_.size() == kMostNesting) {
      text_ += kOmission;
      return;
    }
    text_ += container.IsArray() ? '[' : '{';
    frames_.push_back({.container = &container, .at = container.Entries().begin()});
  }

  void Resume(Frame& frame) {
    if (frame.container->IsArray()) {
      ResumeArray(frame);
    } else {
      ResumeDictionary(frame);
    }
  }

  void ResumeArray(Frame& frame) {
    const auto items = frame.container->Items();
    if (frame.position == items.size()) return End(']');
    if (frame.position != 0) text_ += ", ";
    Begin(items[frame.position++]);
  }

  void ResumeDictionary(Frame& frame) {
    const DictionaryEntries entries = frame.container->Entries();
    if (frame.at == entries.end()) return End('}');
    if (frame.keyIsDone) {
      text_ += ": ";
      frame.keyIsDone = false;
      const Value& value = (frame.at++)->value;
      return Begin(value);
    }
    if (frame.at != entries.begin()) text_ += ", ";
    frame.keyIsDone = true;
    Begin(frame.at->key);
  }

  void End(char bracket) {
    text_ += bracket;
    frames_.pop_back();
  }

  void AppendQuoted(std::string_view text) {
    text_ += '"';
    AppendText(text, [this](char character) { AppendEscaped(character); });
    text_ += '"';
  }

  void AppendPlain(std::string_view text) {
    AppendText(text, [this](char character) { text_ += character; });
  }

  // Appends `text`, its ASCII characters by way of `appendAscii`, and a replacement character for
  // every byte that is no part of a well-formed one. Stops where the limit has been passed.
  template <class AppendAscii>
  void AppendText(std::string_view text, const AppendAscii& appendAscii) {
    while (!text.empty() && !IsFull()) {
      const std::size_t length = Utf8CharacterLength(text);
      if (length == 1) {
        appendAscii(text.front());
      } else {
        text_ += length == 0 ? kReplacementCharacter : text.substr(0, length);
      }
      text.remove_prefix(length == 0 ? 1 : length);
    }
  }

  void AppendEscaped(char character) {
    switch (character) {
      case '"':
      case '\\':
        text_ += {'\\', character};
        return;
      case '\n':
        text_ += "\\n";
        return;
      case '\r':
        text_ += "\\r";
        return;
      case '\t':
        text_ += "\\t";
        return;
      default:
        break;
    }
    const auto code = static_cast<unsigned char>(character);
    if (code >= 0x20 && code != 0x7F) {
      text_ += character;
      return;
    }
    std::array<char, 8> escape{};
    std::snprintf(escape.data(), escape.size(), "\\u%04x", static_cast<unsigned>(code));
    text_ += escape.data();
  }

  // Never between the bytes of one character.
  void CutToLimit() {
    std::size_t end = kMostText;
    while ((static_cast<unsigned char>(text_[end]) & 0xC0U) == 0x80U) --end;
    text_.resize(end);
    text_ += kOmission;
  }

  std::string text_;
  std::vector<Frame> frames_;
};

}  // namespace

std::string Value::Description() const { return Describer().Describe(*this); }

}  // namespace Platform
