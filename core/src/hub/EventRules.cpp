#include "hub/EventRules.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include "VelmoraCore/ErrorCodes.h"

namespace Velmora::EventRules {
namespace {

constexpr const char* kSourceLocation = "src/hub/EventRules";

std::uint8_t ByteAt(std::string_view text, std::size_t position) {
  return static_cast<std::uint8_t>(text[position]);
}

// The length in bytes of the UTF-8 character that begins at `position`; 0 when none does.
std::size_t CharacterLength(std::string_view text, std::size_t position) {
  const std::uint8_t first = ByteAt(text, position);
  if (first < 0x80) return 1;
  const std::size_t length = first >= 0xF0 ? 4 : (first >= 0xE0 ? 3 : 2);
  if (first < 0xC2 || first > 0xF4 || text.size() - position < length) return 0;
  for (std::size_t next = 1; next < length; ++next) {
    if ((ByteAt(text, position + next) & 0xC0U) != 0x80) return 0;
  }
  // Neither longer than need be, nor a surrogate, nor beyond the last character.
  const std::uint8_t second = ByteAt(text, position + 1);
  const bool isOutOfRange = (first == 0xE0 && second < 0xA0) || (first == 0xED && second > 0x9F) ||
                            (first == 0xF0 && second < 0x90) || (first == 0xF4 && second > 0x8F);
  return isOutOfRange ? 0 : length;
}

bool IsUtf8(std::string_view text) {
  std::size_t position = 0;
  while (position < text.size()) {
    const std::size_t length = CharacterLength(text, position);
    if (length == 0) return false;
    position += length;
  }
  return true;
}

// U+0080 to U+009F are written as C2 and a byte below A0.
bool HasControlCharacter(std::string_view text) {
  for (std::size_t position = 0; position < text.size(); ++position) {
    const std::uint8_t byte = ByteAt(text, position);
    if (byte < 0x20 || byte == 0x7F) return true;
    if (byte == 0xC2 && position + 1 < text.size() && ByteAt(text, position + 1) < 0xA0) {
      return true;
    }
  }
  return false;
}

bool IsName(std::string_view text) {
  return !text.empty() && text.size() <= kMaxNameLength && IsUtf8(text) &&
         !HasControlCharacter(text);
}

// The values that are still to be looked at, and how many there were in all.
class ValueWalk {
 public:
  bool Add(const VariantMap& members) {
    return std::all_of(members.begin(), members.end(), [this](const auto& member) {
      return IsUtf8(member.first) && Add(member.second);
    });
  }

  bool AreAllSupported() {
    while (!waiting_.empty()) {
      const Variant* value = waiting_.back();
      waiting_.pop_back();
      if (!IsSupported(*value)) return false;
    }
    return true;
  }

 private:
  bool Add(const std::shared_ptr<Variant>& value) {
    if (++count_ > kMaxValueCount) return false;
    if (value != nullptr) waiting_.push_back(value.get());
    return true;
  }

  bool IsSupported(const Variant& value) {
    switch (value.GetKind()) {
      case VariantKind::String:
        return IsUtf8(value.GetString());
      case VariantKind::Double:
        return std::isfinite(value.GetDouble());
      case VariantKind::VariantVector: {
        const VariantVector& elements = value.GetVariantVector();
        return std::all_of(elements.begin(), elements.end(),
                           [this](const auto& element) { return Add(element); });
      }
      case VariantKind::VariantMap:
        return Add(value.GetVariantMap());
      case VariantKind::Null:
      case VariantKind::Integer:
      case VariantKind::Long:
      case VariantKind::Boolean:
        break;
    }
    return true;
  }

  std::vector<const Variant*> waiting_;
  std::size_t count_ = 0;
};

}  // namespace

bool IsTypeOrSource(std::string_view text) {
  return IsName(text) && text.find(' ') == std::string_view::npos;
}

bool IsModuleName(std::string_view text) {
  return IsName(text) && text.find_first_not_of(' ') != std::string_view::npos;
}

bool AreDataSupported(const EventData* data) {
  ValueWalk walk;
  return data == nullptr || (walk.Add(data->GetAll()) && walk.AreAllSupported());
}

std::optional<SdkError> Check(const std::shared_ptr<Event>& event) {
  if (event == nullptr) {
    return SdkError(ErrorCodes::kExternalModuleEventWasNull, "there is no event",
                    DebugInfo(kSourceLocation, __LINE__));
  }
  if (std::optional<SdkError> error = CheckTypeAndSource(event->GetType(), event->GetSource())) {
    return error;
  }
  if (!AreDataSupported(event->GetData().get())) {
    return SdkError(ErrorCodes::kExternalModuleEventDataNotSupported,
                    "the event's data cannot be written as JSON, or are too many",
                    DebugInfo(kSourceLocation, __LINE__));
  }
  return std::nullopt;
}

std::optional<SdkError> CheckTypeAndSource(std::string_view type, std::string_view source) {
  if (!IsTypeOrSource(type)) {
    return SdkError(ErrorCodes::kExternalModuleEventTypeNotSupported,
                    "an event type must be 1 to 255 bytes of text without blanks",
                    DebugInfo(kSourceLocation, __LINE__));
  }
  if (!IsTypeOrSource(source)) {
    return SdkError(ErrorCodes::kExternalModuleEventSourceNotSupported,
                    "an event source must be 1 to 255 bytes of text without blanks",
                    DebugInfo(kSourceLocation, __LINE__));
  }
  return std::nullopt;
}

}  // namespace Velmora::EventRules
