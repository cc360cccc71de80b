#pragma once

#include "QEXCore_iOS/Platform/UrlParser.h"

namespace Platform {

// Strict: a blank, a character beyond ASCII, a zero byte or a bad escape makes a text no URL.
// Relative references are URLs.
class UriparserUrlParser final : public UrlParser {
 public:
  std::optional<UrlComponents> Parse(const std::string& url) const override;
};

}  // namespace Platform
