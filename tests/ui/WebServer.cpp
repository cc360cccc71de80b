#include "ui/WebServer.h"

#include <stdexcept>
#include <thread>

#include <httplib.h>

namespace TestSupport {
namespace {

constexpr const char* kGreenPage = "<body style='background:#20A040'></body>";

}  // namespace

struct WebServer::Server {
  httplib::Server http;
  int port = 0;
  std::thread thread;
};

WebServer::WebServer() : server_(std::make_unique<Server>()) {
  auto& http = server_->http;
  const auto note = [this](const httplib::Request& request) {
    std::string line = request.method + " " + request.path;
    if (!request.body.empty()) line += " " + request.body;
    requests_.With([&line](auto& requests) { requests.push_back(line); });
  };
  const auto green = [note](const httplib::Request& request, httplib::Response& response) {
    note(request);
    response.set_content(kGreenPage, "text/html");
  };
  // A browser connects ahead of what it will ask, and the end shall not wait for that.
  http.set_keep_alive_timeout(0);
  http.set_read_timeout(0, 200'000);
  http.Get("/green", green);
  http.Post("/form", green);
  http.Get("/redirect", [note](const httplib::Request& request, httplib::Response& response) {
    note(request);
    response.set_redirect("/green");
  });
  server_->port = http.bind_to_any_port("127.0.0.1");
  if (server_->port < 0) throw std::runtime_error("The web server has no port.");
  server_->thread = std::thread([&http] { http.listen_after_bind(); });
  while (!http.is_running()) std::this_thread::yield();
}

WebServer::~WebServer() {
  server_->http.stop();
  server_->thread.join();
}

std::string WebServer::Url(const std::string& path) const {
  return "http://127.0.0.1:" + std::to_string(server_->port) + path;
}

}  // namespace TestSupport
