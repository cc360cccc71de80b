#pragma once

#include <memory>
#include <string>

#include "Certificates.h"

// What a server's certificate may be.
enum class ServerCertificate {
  Trusted,
  Expired,
  NotYetValid,
  SelfSigned,
  OfAnotherHost,
  OfAnUnknownAuthority
};

// A server with such a certificate; "trusted" means by the tests' authority.
DevServer::Identity IdentityWith(ServerCertificate certificate);

// A server on 127.0.0.1, over TLS, that every case runs over. It serves "/hello.txt" ("hello\n")
// and the files that tests put into it, with "ETag" and "Last-Modified", conditions, ranges, and
// gzip for those named ".json". Beside them:
//
//   /moved            301 to /hello.txt              /cleartext   301 to http
//   /none             204                            /unchanged   304, whatever is asked
//   /no-range         416, with a body               /broken      500
//   /agent            the request's "User-Agent"
//   /bare             "since <If-Modified-Since> match <If-None-Match>", without tag and date
//   /dated            the same, with a date          /tagged      the same, with date and weak tag
//   /reset            the connection is dropped
//   /live/chunked     a body without a length, in two parts
//   /live/slow        the first byte comes after 1.2 seconds
//   /live/drip        a byte of the body every 350 milliseconds, ten of them
//   /live/stall       half of the body, and then nothing
//   /live/truncated   half of the body, and the end of the connection
//   /live/torn        half of the body, and the connection is dropped
//   /live/hang        nothing at all
//   /live/echo        the method, a blank, and the body of the request
class CaseServer {
 public:
  virtual ~CaseServer() = default;

  virtual std::string Url(const std::string& path,
                          ServerCertificate certificate = ServerCertificate::Trusted) const = 0;

  virtual void PutFile(const std::string& name, const std::string& contents) = 0;
  virtual void RemoveFile(const std::string& name) = 0;

  // How many requests for "/live/hang" have come and have not gone.
  virtual int Hanging() const = 0;

  // A URL at which connections are accepted, as long as the server lives, and nothing is ever said.
  virtual std::string SilentUrl() = 0;
};

std::unique_ptr<CaseServer> MakeLoopbackServer();

// nginx, whose "/live/" comes from a server behind it. What that one does to its connection, nginx
// passes on as it sees fit: the client's connection is closed, not dropped.
std::unique_ptr<CaseServer> MakeNginx1Server();
std::unique_ptr<CaseServer> MakeNginx2Server();
