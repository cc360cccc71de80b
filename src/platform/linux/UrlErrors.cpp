#include "platform/linux/UrlErrors.h"

#include <utility>

#include <curl/curl.h>

namespace Platform {
namespace {

UrlFailure FailureOf(int curlCode) {
  switch (curlCode) {
    case CURLE_URL_MALFORMAT:
    case CURLE_OUT_OF_MEMORY:
      return UrlFailure::BadRequest;
    // The scheme of the request itself was looked at before: this one comes from a redirect.
    case CURLE_UNSUPPORTED_PROTOCOL:
      return UrlFailure::CleartextRefused;
    case CURLE_COULDNT_RESOLVE_PROXY:
    case CURLE_COULDNT_RESOLVE_HOST:
    case CURLE_COULDNT_CONNECT:
    case CURLE_PROXY:
    case CURLE_INTERFACE_FAILED:
      return UrlFailure::NotConnected;
    case CURLE_SSL_CONNECT_ERROR:
    case CURLE_PEER_FAILED_VERIFICATION:
    case CURLE_SSL_CERTPROBLEM:
    case CURLE_SSL_CIPHER:
    case CURLE_SSL_CACERT_BADFILE:
    case CURLE_SSL_ISSUER_ERROR:
    case CURLE_SSL_INVALIDCERTSTATUS:
    case CURLE_USE_SSL_FAILED:
      return UrlFailure::NotTrusted;
    case CURLE_OPERATION_TIMEDOUT:
      return UrlFailure::TimedOut;
    case CURLE_TOO_MANY_REDIRECTS:
      return UrlFailure::TooManyRedirects;
    case CURLE_BAD_CONTENT_ENCODING:
    case CURLE_WEIRD_SERVER_REPLY:
      return UrlFailure::BadResponse;
    default:
      return UrlFailure::ConnectionLost;
  }
}

}  // namespace

Error MakeUrlError(UrlFailure failure, std::string description) {
  return {kUrlErrorDomain, static_cast<std::int64_t>(failure), std::move(description)};
}

Error UrlErrorOfCurl(int curlCode, std::string_view detail) {
  std::string description(
      detail.empty() ? std::string_view(::curl_easy_strerror(static_cast<CURLcode>(curlCode)))
                     : detail);
  return MakeUrlError(FailureOf(curlCode), std::move(description));
}

}  // namespace Platform
