#pragma once

#include <cstdint>

namespace Velmora {

// The HTTP status codes that callers compare with HttpConnectionInterface::GetResponseCode().
class HttpConnectionConstants {
 public:
  HttpConnectionConstants() = delete;

  static constexpr std::int32_t HTTP_OK = 200;
  static constexpr std::int32_t HTTP_CREATED = 201;
  static constexpr std::int32_t HTTP_ACCEPTED = 202;
  static constexpr std::int32_t HTTP_NO_CONTENT = 204;
  static constexpr std::int32_t HTTP_PARTIAL_CONTENT = 206;
  static constexpr std::int32_t HTTP_MULTIPLE_CHOICES = 300;
  static constexpr std::int32_t HTTP_MOVED_PERMANENTLY = 301;
  static constexpr std::int32_t HTTP_FOUND = 302;
  static constexpr std::int32_t HTTP_SEE_OTHER = 303;
  static constexpr std::int32_t HTTP_NOT_MODIFIED = 304;
  static constexpr std::int32_t HTTP_TEMPORARY_REDIRECT = 307;
  static constexpr std::int32_t HTTP_PERMANENT_REDIRECT = 308;
  static constexpr std::int32_t HTTP_BAD_REQUEST = 400;
  static constexpr std::int32_t HTTP_UNAUTHORIZED = 401;
  static constexpr std::int32_t HTTP_FORBIDDEN = 403;
  static constexpr std::int32_t HTTP_NOT_FOUND = 404;
  static constexpr std::int32_t HTTP_REQUEST_TIMEOUT = 408;
  static constexpr std::int32_t HTTP_GONE = 410;
  static constexpr std::int32_t HTTP_PRECONDITION_FAILED = 412;
  static constexpr std::int32_t HTTP_REQUESTED_RANGE_NOT_SATISFIABLE = 416;
  static constexpr std::int32_t HTTP_TOO_MANY_REQUESTS = 429;
  static constexpr std::int32_t HTTP_INTERNAL_SERVER_ERROR = 500;
  static constexpr std::int32_t HTTP_BAD_GATEWAY = 502;
  static constexpr std::int32_t HTTP_SERVICE_UNAVAILABLE = 503;
  static constexpr std::int32_t HTTP_GATEWAY_TIMEOUT = 504;
};

}  // namespace Velmora
