#pragma once

#include <cstdint>
#include <string>

#include "support/tls/LoopbackServer.h"

// The frames of HTTP/2 as a server writes them, right or wrong, byte by byte.
namespace TestSupport {

enum class Http2Frame : std::uint8_t {
  Data = 0,
  Headers = 1,
  ResetStream = 3,
  Settings = 4,
  Ping = 6,
  GoAway = 7,
  WindowUpdate = 8,
};

inline constexpr std::uint8_t kHttp2EndStream = 1;
inline constexpr std::uint8_t kHttp2EndHeaders = 4;

// The only stream of a connection that is used for one request.
inline constexpr std::uint32_t kHttp2Stream = 1;

std::string MakeHttp2Frame(Http2Frame type, std::uint8_t flags, std::uint32_t stream,
                           const std::string& payload);

// The server's settings, all of them left as they are by default.
std::string Http2Settings();

// The head of a response with status 200, and with a length where one is told.
std::string Http2Head(const std::string& contentLength = {});

// Part of the body, or the last part of it.
std::string Http2Body(const std::string& bytes, bool isLast);

// The server gives up the request, or the connection, for the reason of that number.
std::string Http2Reset(std::uint32_t reason);
std::string Http2GoAway(std::uint32_t lastStream, std::uint32_t reason);

// Sends the settings and reads until the client has asked for something. False when it closes its
// end before.
bool BeginHttp2(WireConnection& connection);

}  // namespace TestSupport
