#pragma once

#include <memory>
#include <string>
#include <vector>

#include "support/Guarded.h"

namespace TestSupport {

// A web site on this machine, from construction to destruction:
//   /green     a page that is green all over
//   /redirect  leads to /green
//   /form      takes a form, and is green, too
class WebServer {
 public:
  WebServer();
  ~WebServer();
  WebServer(const WebServer&) = delete;
  WebServer& operator=(const WebServer&) = delete;

  std::string Url(const std::string& path) const;

  // What was asked for, in order: "GET /green", "POST /form size=M".
  std::vector<std::string> Requests() const { return requests_.Get(); }

  static constexpr unsigned kGreen = 0x20A040;

 private:
  struct Server;

  Guarded<std::vector<std::string>> requests_;
  std::unique_ptr<Server> server_;
};

}  // namespace TestSupport
