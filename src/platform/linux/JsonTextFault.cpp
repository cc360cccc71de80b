#include "platform/linux/JsonTextFault.h"

#include <algorithm>
#include <cstddef>

#include <rapidjson/memorystream.h>
#include <rapidjson/reader.h>

#include "QEXCore_iOS/Platform/JsonSerialization.h"
#include "QEXCore_iOS/Platform/Utf8.h"

namespace Platform {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

constexpr const char* kTooDeep = "Containers nested deeper than 1024 levels";
static_assert(JsonSerialization::kMaximumDepth == 1024);

// Stops the reading where the limits of ours are passed that RapidJSON does not know.
class LimitWatch : public rapidjson::BaseReaderHandler<rapidjson::UTF8<>, LimitWatch> {
 public:
  // What stopped the reading; null when nothing did.
  const char* Reason() const { return reason_; }

  bool RawNumber(const char*, rapidjson::SizeType, bool) { return true; }
  bool StartObject() { return Enter(); }
  bool EndObject(rapidjson::SizeType) { return Leave(); }
  bool StartArray() { return Enter(); }
  bool EndArray(rapidjson::SizeType) { return Leave(); }
  bool Key(const char* text, rapidjson::SizeType length, bool copy) {
    return String(text, length, copy);
  }

  // RapidJSON lets a lone low surrogate pass, and encodes it as if it were a character.
  bool String(const char* text, rapidjson::SizeType length, bool) {
    if (IsValidUtf8({text, length})) return true;
    reason_ = "Surrogate without its pair in the string that ends";
    return false;
  }

 private:
  bool Enter() {
    if (depth_ < JsonSerialization::kMaximumDepth) {
      ++depth_;
      return true;
    }
    reason_ = kTooDeep;
    return false;
  }
  bool Leave() {
    --depth_;
    return true;
  }

  int depth_ = 0;
  const char* reason_ = nullptr;
};

const char* WordsFor(rapidjson::ParseErrorCode code, std::string_view text, std::size_t offset) {
  if (code == rapidjson::kParseErrorDocumentEmpty) return "No object or array";
  if (offset == text.size()) return "Unexpected end of the text";
  if (static_cast<unsigned char>(text[offset]) < 0x20) return "Unexpected control character";
  switch (code) {
    case rapidjson::kParseErrorDocumentRootNotSingular:
      return "Unexpected text after the end";
    case rapidjson::kParseErrorObjectMissName:
      return "Missing member name";
    case rapidjson::kParseErrorObjectMissColon:
      return "Missing colon";
    case rapidjson::kParseErrorObjectMissCommaOrCurlyBracket:
      return "Missing comma or closing brace";
    case rapidjson::kParseErrorArrayMissCommaOrSquareBracket:
      return "Missing comma or closing bracket";
    case rapidjson::kParseErrorStringUnicodeEscapeInvalidHex:
    case rapidjson::kParseErrorStringEscapeInvalid:
      return "Invalid escape";
    case rapidjson::kParseErrorStringUnicodeSurrogateInvalid:
      return "Surrogate without its pair";
    case rapidjson::kParseErrorNumberTooBig:
      return "Number out of range";
    case rapidjson::kParseErrorNumberMissFraction:
    case rapidjson::kParseErrorNumberMissExponent:
      return "Incomplete number";
    default:
      return "Unexpected character";
  }
}

// "<what> at line <n>, column <n>".
std::string Located(std::string_view what, std::string_view text, std::size_t offset) {
  const std::string_view before = text.substr(0, offset);
  const auto line = std::count(before.begin(), before.end(), '\n') + 1;
  const std::size_t lineStart = before.rfind('\n') + 1;  // 0 when there is none
  return std::string(what)
      .append(" at line ")
      .append(std::to_string(line))
      .append(", column ")
      .append(std::to_string(offset - lineStart + 1));
}

std::size_t FirstOffsetThatIsNotUtf8(std::string_view text) {
  std::size_t offset = 0;
  while (const std::size_t length = Utf8CharacterLength(text.substr(offset))) offset += length;
  return offset;
}

std::string DescribeSyntax(std::string_view text, JsonRefusal refusal) {
  // Numbers as strings: the values are of no interest, and computing them could overflow.
  constexpr unsigned flags = rapidjson::kParseIterativeFlag | rapidjson::kParseNumbersAsStringsFlag;
  rapidjson::MemoryStream stream(text.data(), text.size());
  LimitWatch watch;
  rapidjson::Reader reader;
  const rapidjson::ParseResult result = reader.Parse<flags>(stream, watch);
  const std::size_t offset = result.IsError() ? result.Offset() : stream.Tell();

  if (watch.Reason() != nullptr) return Located(watch.Reason(), text, offset);
  // RapidJSON takes a zero byte for the end.
  if (offset < text.size() && text[offset] == '\0') {
    return Located("Unexpected zero byte", text, offset);
  }
  // RapidJSON finds some numbers too big that the reader can read (0e999).
  const bool blamesGoodNumber =
      result.Code() == rapidjson::kParseErrorNumberTooBig && refusal != JsonRefusal::Number;
  if (result.IsError() && !blamesGoodNumber) {
    return Located(WordsFor(result.Code(), text, offset), text, offset);
  }
  return refusal == JsonRefusal::Number ? "Number out of range" : "The text is not JSON";
}

}  // namespace

std::string DescribeJsonFault(std::string_view text, JsonRefusal refusal) {
  if (refusal == JsonRefusal::TooLarge) return "The text is too large";
  if (refusal == JsonRefusal::NoMemory) return "There is not enough memory to read the text";
  if (text.starts_with(kByteOrderMark)) return Located("Unexpected byte order mark", text, 0);
  const std::size_t invalid = FirstOffsetThatIsNotUtf8(text);
  if (invalid < text.size()) return Located("Invalid UTF-8", text, invalid);
  if (refusal == JsonRefusal::ScalarRoot) {
    return Located("The root is neither an object nor an array", text,
                   text.find_first_not_of(" \t\r\n"));
  }
  return DescribeSyntax(text, refusal);
}

}  // namespace Platform
