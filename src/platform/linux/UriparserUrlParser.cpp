#include "platform/linux/UriparserUrlParser.h"

#include <string_view>

#include <uriparser/Uri.h>

namespace Platform {
namespace {

class ParsedUri {
 public:
  explicit ParsedUri(std::string_view text) {
    const char* position = nullptr;
    isValid_ = uriParseSingleUriExA(&uri_, text.data(), text.data() + text.size(), &position) ==
               URI_SUCCESS;
  }
  ~ParsedUri() {
    if (isValid_) uriFreeUriMembersA(&uri_);
  }
  ParsedUri(const ParsedUri&) = delete;
  ParsedUri& operator=(const ParsedUri&) = delete;

  bool IsValid() const { return isValid_; }
  const UriUriA& Uri() const { return uri_; }

 private:
  UriUriA uri_{};
  bool isValid_ = false;
};

std::string_view TextOf(const UriTextRangeA& range) {
  if (range.first == nullptr) return {};
  return {range.first, static_cast<std::size_t>(range.afterLast - range.first)};
}

bool HasHost(const UriUriA& uri) {
  return uri.hostText.first != nullptr || uri.hostData.ip4 != nullptr ||
         uri.hostData.ip6 != nullptr || uri.hostData.ipFuture.first != nullptr;
}

std::string PathOf(const UriUriA& uri) {
  std::string path;
  if (uri.absolutePath || (HasHost(uri) && uri.pathHead != nullptr)) path += '/';
  for (const UriPathSegmentA* segment = uri.pathHead; segment != nullptr; segment = segment->next) {
    path += TextOf(segment->text);
    if (segment->next != nullptr) path += '/';
  }
  return path;
}

bool IsPort(std::string_view digits) {
  constexpr unsigned kLargestPort = 65535;
  unsigned port = 0;
  for (const char digit : digits) {
    port = port * 10 + static_cast<unsigned>(digit - '0');
    if (port > kLargestPort) return false;
  }
  return true;
}

}  // namespace

std::optional<UrlComponents> UriparserUrlParser::Parse(const std::string& url) const {
  if (url.empty() || url.find('\0') != std::string::npos) return std::nullopt;
  const ParsedUri parsed(url);
  if (!parsed.IsValid()) return std::nullopt;
  const UriUriA& uri = parsed.Uri();
  if (!IsPort(TextOf(uri.portText))) return std::nullopt;
  return UrlComponents{.scheme = std::string(TextOf(uri.scheme)),
                       .host = std::string(TextOf(uri.hostText)),
                       .path = PathOf(uri),
                       .query = std::string(TextOf(uri.query))};
}

}  // namespace Platform
