#include "support/tls/Http2Frames.h"

#include <cstddef>
#include <string_view>

namespace TestSupport {
namespace {

constexpr std::string_view kPreface = "PRI * HTTP/2.0\r\n\r\nSM\r\n\r\n";
constexpr std::size_t kHeadSize = 9;

std::string Bytes(std::uint32_t number, int count) {
  std::string bytes;
  for (int shift = 8 * (count - 1); shift >= 0; shift -= 8) {
    bytes += static_cast<char>((number >> static_cast<unsigned>(shift)) & 0xFFU);
  }
  return bytes;
}

std::size_t LengthOf(std::string_view frame) {
  std::size_t length = 0;
  for (const char byte : frame.substr(0, 3))
    length = length << 8U | static_cast<unsigned char>(byte);
  return length;
}

// Whether these bytes hold the whole head of a request.
bool HoldsRequest(std::string_view bytes) {
  if (bytes.size() < kPreface.size()) return false;
  bytes.remove_prefix(kPreface.size());
  while (bytes.size() >= kHeadSize) {
    const std::size_t size = kHeadSize + LengthOf(bytes);
    if (bytes.size() < size) return false;
    if (bytes[3] == static_cast<char>(Http2Frame::Headers)) return true;
    bytes.remove_prefix(size);
  }
  return false;
}

}  // namespace

std::string MakeHttp2Frame(Http2Frame type, std::uint8_t flags, std::uint32_t stream,
                           const std::string& payload) {
  return Bytes(static_cast<std::uint32_t>(payload.size()), 3) +
         Bytes(static_cast<std::uint32_t>(type), 1) + Bytes(flags, 1) + Bytes(stream, 4) + payload;
}

std::string Http2Settings() { return MakeHttp2Frame(Http2Frame::Settings, 0, 0, ""); }

std::string Http2Head(const std::string& contentLength) {
  // Out of the table that every connection begins with: 8 is ":status: 200", 28 the name
  // "content-length", whose value follows as it stands.
  std::string fields = "\x88";
  if (!contentLength.empty()) {
    fields += "\x5c" + Bytes(static_cast<std::uint32_t>(contentLength.size()), 1) + contentLength;
  }
  return MakeHttp2Frame(Http2Frame::Headers, kHttp2EndHeaders, kHttp2Stream, fields);
}

std::string Http2Body(const std::string& bytes, bool isLast) {
  return MakeHttp2Frame(Http2Frame::Data, isLast ? kHttp2EndStream : 0, kHttp2Stream, bytes);
}

std::string Http2Reset(std::uint32_t reason) {
  return MakeHttp2Frame(Http2Frame::ResetStream, 0, kHttp2Stream, Bytes(reason, 4));
}

std::string Http2GoAway(std::uint32_t lastStream, std::uint32_t reason) {
  return MakeHttp2Frame(Http2Frame::GoAway, 0, 0, Bytes(lastStream, 4) + Bytes(reason, 4));
}

bool BeginHttp2(WireConnection& connection) {
  if (!connection.Send(Http2Settings())) return false;
  std::string received;
  while (!HoldsRequest(received)) {
    const std::string more = connection.Receive();
    if (more.empty()) return false;
    received += more;
  }
  return true;
}

}  // namespace TestSupport
