#include "platform/linux/UrlRequestRules.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "platform/linux/UriparserUrlParser.h"
#include "platform/linux/UrlErrors.h"

namespace Platform {
namespace {

char Lower(char character) {
  return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a')
                                              : character;
}

char Upper(char character) {
  return character >= 'a' && character <= 'z' ? static_cast<char>(character - 'a' + 'A')
                                              : character;
}

bool IsTokenCharacter(char character) {
  const char lower = Lower(character);
  return (lower >= 'a' && lower <= 'z') || (character >= '0' && character <= '9') ||
         std::string_view("!#$%&'*+-.^_`|~").find(character) != std::string_view::npos;
}

bool IsForbiddenInValue(char character) {
  const auto code = static_cast<unsigned char>(character);
  return (code < 0x20 && character != '\t') || code == 0x7f;
}

bool CanBeSent(const UrlHeader& header) {
  return !header.name.empty() &&
         std::all_of(header.name.begin(), header.name.end(), IsTokenCharacter) &&
         std::none_of(header.value.begin(), header.value.end(), IsForbiddenInValue);
}

}  // namespace

std::optional<Error> RefusalOf(const UrlRequest& request, bool allowsCleartext) {
  const auto parts = UriparserUrlParser().Parse(request.url);
  if (!parts || parts->host.empty()) {
    return MakeUrlError(UrlFailure::BadRequest, "It is no URL of a server.");
  }
  if (!IsSameHeader(parts->scheme, "https") &&
      !(allowsCleartext && IsSameHeader(parts->scheme, "http"))) {
    return MakeUrlError(UrlFailure::CleartextRefused, "Only https is allowed.");
  }
  if (request.method != "GET" && request.method != "POST") {
    return MakeUrlError(UrlFailure::BadRequest, "The method is neither GET nor POST.");
  }
  if (!std::all_of(request.headers.begin(), request.headers.end(), CanBeSent)) {
    return MakeUrlError(UrlFailure::BadRequest, "A header cannot be sent as it stands.");
  }
  return std::nullopt;
}

bool IsCleartextUrl(std::string_view url) {
  constexpr std::string_view kCleartext = "http:";
  return IsSameHeader(url.substr(0, kCleartext.size()), kCleartext);
}

bool IsConnectionHeader(std::string_view name) {
  constexpr std::array<std::string_view, 9> kNames = {
      "Connection", "Content-Length",    "Expect", "Host", "Keep-Alive", "Proxy-Connection",
      "TE",         "Transfer-Encoding", "Upgrade"};
  return std::any_of(kNames.begin(), kNames.end(),
                     [name](std::string_view known) { return IsSameHeader(name, known); });
}

bool IsSameHeader(std::string_view left, std::string_view right) {
  return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                    [](char one, char other) { return Lower(one) == Lower(other); });
}

std::string UsualHeaderName(std::string_view name) {
  // Those whose usual spelling is not one capital for each word.
  constexpr std::array<std::string_view, 6> kExceptions = {
      "ETag", "WWW-Authenticate", "Content-MD5", "X-XSS-Protection", "DNT", "TE"};
  for (const std::string_view exception : kExceptions) {
    if (IsSameHeader(name, exception)) return std::string(exception);
  }
  std::string usual(name);
  bool startsWord = true;
  for (char& character : usual) {
    character = startsWord ? Upper(character) : Lower(character);
    startsWord = character == '-';
  }
  return usual;
}

}  // namespace Platform
