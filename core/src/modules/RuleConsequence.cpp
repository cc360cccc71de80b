#include "modules/RuleConsequence.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "modules/MemberReader.h"

namespace Velmora {
namespace {

using Need = MemberReader::Need;

// In the order of the alternatives of RuleConsequence.
constexpr std::array<const char*, 5> kNames{"alert", "message", "notification", "button", "open"};
static_assert(kNames.size() == std::variant_size_v<RuleConsequence>);

bool IsLetterOrDigit(char byte) {
  return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') ||
         (byte >= '0' && byte <= '9');
}

bool IsVisible(char byte) { return static_cast<unsigned char>(byte) > 0x20 && byte != 0x7F; }

// Has a scheme and something behind it; whether the system can open it shows then.
bool IsUrl(std::string_view text) {
  const std::size_t colon = text.find(':');
  return colon != std::string_view::npos && colon > 1 && colon + 1 < text.size() &&
         std::all_of(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(colon),
                     [](char byte) {
                       return IsLetterOrDigit(byte) || byte == '+' || byte == '-' || byte == '.';
                     }) &&
         std::all_of(text.begin(), text.end(), IsVisible);
}

bool IsPlainFileName(std::string_view name) {
  constexpr std::size_t kLongest = 255;
  return name.size() <= kLongest && name.front() != '.' &&
         name.find_first_of("/\\") == std::string_view::npos &&
         std::none_of(name.begin(), name.end(),
                      [](char byte) { return static_cast<unsigned char>(byte) < 0x20; });
}

std::string Text(MemberReader& reader, const char* name, Need need = Need::Optional) {
  return reader.Text(name, need).value_or("");
}

std::string Url(MemberReader& reader, Need need = Need::Optional) {
  std::string url = Text(reader, "url", need);
  if (!url.empty() && !IsUrl(url)) reader.Complain(R"("url" is no URL)");
  return url;
}

AlertConsequence ReadAlert(MemberReader& reader) {
  return {.title = Text(reader, "title"),
          .message = Text(reader, "message", Need::Required),
          .positive = Text(reader, "positive", Need::Required),
          .negative = Text(reader, "negative"),
          .url = Url(reader)};
}

MessageConsequence ReadMessage(MemberReader& reader) {
  MessageConsequence message{.html = Text(reader, "html"), .base64 = Text(reader, "base64")};
  if (message.html.empty() == message.base64.empty()) {
    reader.Complain(R"(it needs either "html" or "base64")");
  }
  if (!message.html.empty() && !IsPlainFileName(message.html)) {
    reader.Complain(R"("html" is not the plain name of a file)");
  }
  return message;
}

NotificationConsequence ReadNotification(MemberReader& reader) {
  constexpr std::int64_t kYear = std::int64_t{366} * 24 * 3600;
  NotificationConsequence notification{.text = Text(reader, "text", Need::Required),
                                       .delay = reader.WholeNumber("delay", 0, kYear).value_or(0),
                                       .sound = Text(reader, "sound"),
                                       .category = Text(reader, "category"),
                                       .link = Text(reader, "link"),
                                       .userInfo = {}};
  if (const auto userInfo = reader.Map("userInfo", Need::Optional)) {
    notification.userInfo = userInfo->GetVariantMap();
  }
  return notification;
}

RuleConsequence ReadNamed(std::size_t index, MemberReader& reader) {
  switch (index) {
    case 0:
      return ReadAlert(reader);
    case 1:
      return ReadMessage(reader);
    case 2:
      return ReadNotification(reader);
    case 3:
      return ButtonConsequence{Url(reader)};
    default:
      return OpenConsequence{Url(reader, Need::Required)};
  }
}

}  // namespace

const char* NameOf(const RuleConsequence& consequence) { return kNames.at(consequence.index()); }

bool TakesTheScreen(const RuleConsequence& consequence) {
  return std::holds_alternative<AlertConsequence>(consequence) ||
         std::holds_alternative<MessageConsequence>(consequence);
}

std::vector<RuleConsequence> ReadConsequences(const VariantMap& json, std::string& problem) {
  std::vector<RuleConsequence> consequences;
  MemberReader reader(json);
  for (std::size_t index = 0; index < kNames.size(); ++index) {
    const std::shared_ptr<Variant> content = reader.Map(kNames.at(index), Need::Optional);
    if (content == nullptr) continue;
    MemberReader inner(content->GetVariantMap());
    consequences.push_back(ReadNamed(index, inner));
    const std::string innerProblem = inner.Problem();
    if (!innerProblem.empty()) reader.Complain(kNames.at(index) + (": " + innerProblem));
  }
  if (json.empty()) reader.Complain("there is no consequence");
  if (std::count_if(consequences.begin(), consequences.end(), TakesTheScreen) > 1) {
    reader.Complain(R"("alert" and "message" exclude each other)");
  }
  problem = reader.Problem();
  return problem.empty() ? consequences : std::vector<RuleConsequence>();
}

}  // namespace Velmora
