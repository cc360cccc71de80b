#pragma once

#include <optional>
#include <string>

// Has URLs opened by the application. May be called on any thread; never throws.
class KRVUrlHandler {
 public:
  KRVUrlHandler() = delete;

  // False for an absent or empty text, for one that is no URL, and when nothing opens it.
  static bool showUrl(const std::optional<std::string>& url);
};
