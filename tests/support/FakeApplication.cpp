#include "support/FakeApplication.h"

namespace TestSupport {

void FakeApplication::HaveNoWindow() {
  window = nullptr;
  keyWindow = nullptr;
  windows.clear();
}

bool FakeApplication::OpenUrl(const std::string& url) {
  // What is no absolute URL has no scheme.
  const bool isUrl = url.find(':') != std::string::npos && url.find('\0') == std::string::npos;
  if (!isUrl || !opensUrls_.Get()) return false;
  openedUrls_.With([&](auto& urls) { urls.push_back(url); });
  return true;
}

}  // namespace TestSupport
