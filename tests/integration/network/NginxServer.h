#pragma once

#include <memory>
#include <string>

#include "ChildProgram.h"
#include "support/TemporaryDirectory.h"

// nginx on 127.0.0.1, over TLS with a certificate of the tests' authority, with everything that it
// writes in a folder of its own. It serves the files put into it, and "/moved" (301 to
// "/hello.txt"), "/cleartext" (301 to http), "/none" (204) and "/broken" (500).
class NginxServer {
 public:
  // Waits until it answers. Throws std::runtime_error when it does not.
  NginxServer();

  // Over HTTP/2, or over HTTP/1.1.
  std::string Url(const std::string& path) const { return Address(http2Port_) + path; }
  std::string OldUrl(const std::string& path) const { return Address(http1Port_) + path; }

  void PutFile(const std::string& name, const std::string& contents) const {
    folder_.WriteFile("www/" + name, contents);
  }

 private:
  static std::string Address(int port) { return "https://127.0.0.1:" + std::to_string(port); }
  std::string Configuration() const;
  bool Answers() const;

  const TestSupport::TemporaryDirectory folder_;
  int http2Port_ = 0;
  int http1Port_ = 0;
  std::unique_ptr<ChildProgram> program_;
};
