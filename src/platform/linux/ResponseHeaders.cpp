#include "platform/linux/ResponseHeaders.h"

#include "platform/linux/UrlRequestRules.h"

namespace Platform {
namespace {

constexpr std::string_view kBlanks = " \t\r\n";

std::string_view Trimmed(std::string_view text) {
  const std::size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

}  // namespace

bool ResponseHeaders::Add(std::string_view line) {
  if (line.starts_with("HTTP/")) {
    *this = ResponseHeaders();
  } else if (Trimmed(line).empty()) {
    isComplete_ = true;
  }
  size_ += line.size();
  if (size_ > kLargest) return false;
  if (isComplete_) return true;
  if (line.starts_with(' ') || line.starts_with('\t')) {
    ContinueField(Trimmed(line));
  } else {
    AddField(line);
  }
  return true;
}

void ResponseHeaders::AddField(std::string_view line) {
  lastName_.clear();
  const std::size_t colon = line.find(':');
  if (colon == std::string_view::npos) return;
  const std::string_view name = Trimmed(line.substr(0, colon));
  if (name.empty()) return;
  lastName_ = UsualHeaderName(name);
  const std::string_view value = Trimmed(line.substr(colon + 1));
  const auto [field, isNew] = headers_.try_emplace(lastName_, value);
  if (!isNew) field->second.append(", ").append(value);
}

void ResponseHeaders::ContinueField(std::string_view text) {
  if (!lastName_.empty()) headers_[lastName_].append(" ").append(text);
}

}  // namespace Platform
