#include "services/network/HttpReasonPhrase.h"

#include <algorithm>
#include <array>

namespace Velmora {
namespace {

struct Phrase {
  std::int32_t code;
  const char* text;
};

constexpr std::array kPhrases = std::to_array<Phrase>({
    {100, "Continue"},
    {101, "Switching Protocols"},
    {200, "OK"},
    {201, "Created"},
    {202, "Accepted"},
    {203, "Non-Authoritative Information"},
    {204, "No Content"},
    {205, "Reset Content"},
    {206, "Partial Content"},
    {300, "Multiple Choices"},
    {301, "Moved Permanently"},
    {302, "Found"},
    {303, "See Other"},
    {304, "Not Modified"},
    {305, "Use Proxy"},
    {307, "Temporary Redirect"},
    {308, "Permanent Redirect"},
    {400, "Bad Request"},
    {401, "Unauthorized"},
    {402, "Payment Required"},
    {403, "Forbidden"},
    {404, "Not Found"},
    {405, "Method Not Allowed"},
    {406, "Not Acceptable"},
    {407, "Proxy Authentication Required"},
    {408, "Request Timeout"},
    {409, "Conflict"},
    {410, "Gone"},
    {411, "Length Required"},
    {412, "Precondition Failed"},
    {413, "Content Too Large"},
    {414, "URI Too Long"},
    {415, "Unsupported Media Type"},
    {416, "Range Not Satisfiable"},
    {417, "Expectation Failed"},
    {421, "Misdirected Request"},
    {422, "Unprocessable Content"},
    {426, "Upgrade Required"},
    {429, "Too Many Requests"},
    {500, "Internal Server Error"},
    {501, "Not Implemented"},
    {502, "Bad Gateway"},
    {503, "Service Unavailable"},
    {504, "Gateway Timeout"},
    {505, "HTTP Version Not Supported"},
});

constexpr std::array<const char*, 6> kClasses = {
    "", "Informational", "Success", "Redirection", "Client Error", "Server Error"};

}  // namespace

std::string HttpReasonPhrase(std::int32_t statusCode) {
  const auto* const known =
      std::find_if(kPhrases.begin(), kPhrases.end(),
                   [statusCode](const Phrase& phrase) { return phrase.code == statusCode; });
  if (known != kPhrases.end()) return known->text;
  if (statusCode < 0) return {};
  const auto statusClass = static_cast<std::size_t>(statusCode / 100);
  return statusClass < kClasses.size() ? kClasses[statusClass] : "";
}

}  // namespace Velmora
