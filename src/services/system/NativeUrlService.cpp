#include "services/system/NativeUrlService.h"

#include <optional>
#include <utility>

#include "VelmoraCore/Log.h"
#include "interop/StringConversion.h"
#include "services/system/AskHost.h"

namespace Velmora {
namespace {

using Components = std::optional<Platform::UrlComponents>;

constexpr const char* kLogTag = "NativeUrlService";

// Nothing when `url` is no valid URL.
Components Parse(const std::string& url) {
  const std::optional<std::string> text = ToNSString(url);
  if (!text) return std::nullopt;
  return AskHost([&](const Platform::Host& host) { return host.urlParser->Parse(*text); },
                 Components());
}

// The component that `member` points to, called `name` in the log.
std::string Extract(const std::string& url, std::string Platform::UrlComponents::*member,
                    const char* name) {
  Components components = Parse(url);
  if (!components) {
    Log::Debug(kLogTag, "Provided URL (%s) is invalid, couldn't extract %s", url.c_str(), name);
    return {};
  }
  return std::move((*components).*member);
}

}  // namespace

NativeUrlService::NativeUrlService() : Object(kLogTag) {}

std::string NativeUrlService::GetQuery(const std::string& url) const {
  return Extract(url, &Platform::UrlComponents::query, "query params");
}

std::string NativeUrlService::GetPath(const std::string& url) const {
  return Extract(url, &Platform::UrlComponents::path, "url path");
}

std::string NativeUrlService::GetScheme(const std::string& url) const {
  return Extract(url, &Platform::UrlComponents::scheme, "scheme");
}

std::string NativeUrlService::GetHost(const std::string& url) const {
  return Extract(url, &Platform::UrlComponents::host, "host");
}

std::shared_ptr<URLServiceInterface> CreateNativeUrlService() {
  return std::make_shared<NativeUrlService>();
}

}  // namespace Velmora
