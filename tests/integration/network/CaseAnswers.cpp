#include "CaseAnswers.h"

#include <charconv>
#include <chrono>
#include <optional>

#include "support/tls/ContentCodings.h"

namespace {

using namespace std::chrono_literals;
using TestSupport::WireConnection;
using TestSupport::WireRequest;
using Headers = std::map<std::string, std::string>;

constexpr const char* kDate = "Tue, 05 Mar 2024 10:20:30 GMT";

std::string HeaderOf(const WireRequest& request, const std::string& name) {
  const auto found = request.headers.find(name);
  return found == request.headers.end() ? std::string() : found->second;
}

// What "/bare" and its like answer with.
std::string Conditions(const WireRequest& request) {
  return "since " + HeaderOf(request, "if-modified-since") + " match " +
         HeaderOf(request, "if-none-match");
}

using Page = TestSupport::LoopbackServer::Handler;

Page RedirectTo(const std::string& url) {
  return [url](const WireRequest&, WireConnection& connection) {
    connection.Respond(301, "", {{"Location", url}});
  };
}

Page Fixed(int status, const std::string& body) {
  return [status, body](const WireRequest&, WireConnection& connection) {
    connection.Respond(status, body);
  };
}

// Without a length, which belongs to no such response.
Page Bodiless(const std::string& statusLine) {
  return [statusLine](const WireRequest&, WireConnection& connection) {
    connection.Send(statusLine + "\r\n\r\n");
  };
}

Page TellConditions(const Headers& headers) {
  return [headers](const WireRequest& request, WireConnection& connection) {
    connection.Respond(200, Conditions(request), headers);
  };
}

void TellAgent(const WireRequest& request, WireConnection& connection) {
  connection.Respond(200, HeaderOf(request, "user-agent"));
}

void DropConnection(const WireRequest& /*request*/, WireConnection& connection) {
  connection.Reset();
}

// The pages that are always there, by path.
const std::map<std::string, Page>& Pages() {
  static const std::map<std::string, Page> pages = {
      {"/moved", RedirectTo("/hello.txt")},
      {"/cleartext", RedirectTo("http://127.0.0.1/")},
      {"/none", Bodiless("HTTP/1.1 204 No Content")},
      {"/unchanged", Bodiless("HTTP/1.1 304 Not Modified")},
      {"/no-range", Fixed(416, "no such range")},
      {"/broken", Fixed(500, "broken")},
      {"/agent", TellAgent},
      {"/bare", TellConditions({})},
      {"/dated", TellConditions({{"Last-Modified", kDate}})},
      {"/tagged", TellConditions({{"Last-Modified", kDate}, {"ETag", "W/\"a b\""}})},
      {"/reset", DropConnection}};
  return pages;
}

// The first byte that a header "Range: bytes=<first>-<last>" asks for, and the one behind the last.
struct Range {
  std::size_t first = 0;
  std::size_t end = 0;
};
std::optional<Range> RangeIn(const std::string& text, std::size_t size) {
  constexpr std::string_view kUnit = "bytes=";
  if (!text.starts_with(kUnit)) return std::nullopt;
  const char* const textEnd = text.data() + text.size();
  Range range{0, size};
  const auto first = std::from_chars(text.data() + kUnit.size(), textEnd, range.first);
  std::size_t last = 0;
  if (std::from_chars(first.ptr + 1, textEnd, last).ec == std::errc()) range.end = last + 1;
  return range;
}

}  // namespace

CaseAnswers::CaseAnswers() { PutFile("hello.txt", "hello\n"); }

void CaseAnswers::PutFile(const std::string& name, const std::string& contents) {
  const std::string tag = "\"" + std::to_string(++lastTag_) + "\"";
  files_.With([&](Files& files) { files["/" + name] = {contents, tag}; });
}

void CaseAnswers::RemoveFile(const std::string& name) {
  files_.With([&](Files& files) { files.erase("/" + name); });
}

void CaseAnswers::operator()(const WireRequest& request, WireConnection& connection) {
  constexpr std::string_view kLive = "/live/";
  const auto page = Pages().find(request.target);
  if (page != Pages().end()) {
    page->second(request, connection);
  } else if (request.target.starts_with(kLive)) {
    AnswerLive(request.target.substr(kLive.size()), request, connection);
  } else {
    AnswerFile(request, connection);
  }
}

void CaseAnswers::AnswerLive(const std::string& name, const WireRequest& request,
                             WireConnection& connection) {
  if (name == "echo") {
    connection.Respond(200, request.method + " " + request.body);
  } else if (name == "chunked") {
    connection.Send("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n3\r\nabc\r\n");
    connection.Send("2\r\nde\r\n0\r\n\r\n");
  } else if (name == "slow") {
    if (connection.Pause(1200ms)) connection.Respond(200, "late");
  } else if (name == "drip") {
    connection.Send("HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\n");
    for (const char* byte = "0123456789"; *byte != '\0'; ++byte) {
      if (!connection.Send({byte, 1}) || !connection.Pause(350ms)) return;
    }
  } else if (name == "hang") {
    ++hanging_;
    connection.WaitForClient();
    --hanging_;
  } else {
    connection.Send("HTTP/1.1 200 OK\r\nETag: \"half\"\r\nContent-Length: 10\r\n\r\nhalf");
    if (name == "stall") connection.WaitForClient();
    if (name == "torn") connection.Reset();
  }
}

void CaseAnswers::AnswerFile(const WireRequest& request, WireConnection& connection) {
  const auto file = files_.With([&](const Files& files) {
    const auto found = files.find(request.target);
    return found == files.end() ? std::nullopt : std::optional(found->second);
  });
  if (!file) {
    connection.Respond(404, "missing");
    return;
  }
  Headers headers = {{"ETag", file->tag}, {"Last-Modified", kDate}};
  if (HeaderOf(request, "if-none-match") == file->tag) {
    connection.Respond(304, "", headers);
    return;
  }
  if (const auto range = RangeIn(HeaderOf(request, "range"), file->contents.size())) {
    if (range->first >= file->contents.size()) {
      connection.Respond(416, "beyond the end");
    } else {
      connection.Respond(206, file->contents.substr(range->first, range->end - range->first),
                         headers);
    }
    return;
  }
  const bool isPacked = request.target.ends_with(".json");
  if (isPacked) headers["Content-Encoding"] = "gzip";
  connection.Respond(200, isPacked ? TestSupport::Gzip(file->contents) : file->contents, headers);
}
