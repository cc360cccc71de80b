#include "NginxServer.h"

#include <stdexcept>

#include "support/UrlSessionCalls.h"
#include "support/WaitUntil.h"
#include "support/tls/TrustedServer.h"

namespace {

constexpr int kAttempts = 5;  // somebody else may take a port meanwhile

}  // namespace

NginxServer::NginxServer() {
  const auto identity = DevServer::MakeServerIdentity(TestSupport::TrustedServer::Authority());
  folder_.WriteFile("server.pem", identity.certificate);
  folder_.WriteFile("server.key", identity.key);
  PutFile("hello.txt", "hello\n");
  for (int attempt = 0; attempt < kAttempts; ++attempt) {
    http2Port_ = FreePort();
    http1Port_ = FreePort();
    const std::string configuration = folder_.WriteFile("nginx.conf", Configuration());
    program_ = std::make_unique<ChildProgram>(
        std::vector<std::string>{"/usr/sbin/nginx", "-p", folder_.Path(), "-c", configuration, "-e",
                                 folder_.PathOf("error.log")},
        "");
    if (TestSupport::WaitUntil([this] { return program_->HasEnded() || Answers(); }) &&
        !program_->HasEnded()) {
      return;
    }
  }
  throw std::runtime_error("nginx does not answer: " +
                           TestSupport::ReadFileBytes(folder_.PathOf("error.log")));
}

bool NginxServer::Answers() const {
  Platform::CurlUrlSession session(TestSupport::TrustedServer::SessionOptions());
  return TestSupport::Fetch(session, Url("/hello.txt")).response != nullptr &&
         TestSupport::Fetch(session, OldUrl("/hello.txt")).response != nullptr;
}

std::string NginxServer::Configuration() const {
  const auto server = [this](int port, const std::string& options) {
    return "server {\n  listen 127.0.0.1:" + std::to_string(port) + " ssl" + options +
           ";\n  root " + folder_.PathOf("www") +
           ";\n"
           "  add_header X-Protocol $server_protocol always;\n"
           "  location = /moved { return 301 /hello.txt; }\n"
           "  location = /cleartext { return 301 http://127.0.0.1/; }\n"
           "  location = /none { return 204; }\n"
           "  location = /broken { return 500; }\n}\n";
  };
  return "daemon off;\nmaster_process off;\npid nginx.pid;\nworker_rlimit_nofile 4096;\n"
         "events { worker_connections 2048; }\nhttp {\n"
         "access_log off;\nclient_body_temp_path body;\nproxy_temp_path proxy;\n"
         "fastcgi_temp_path fastcgi;\nuwsgi_temp_path uwsgi;\nscgi_temp_path scgi;\n"
         "types { text/plain txt; application/json json; }\n"
         "gzip on;\ngzip_min_length 0;\ngzip_types application/json;\n"
         "ssl_certificate server.pem;\nssl_certificate_key server.key;\n"
         "ssl_session_cache off;\nabsolute_redirect off;\n" +
         server(http2Port_, " http2") + server(http1Port_, "") + "}\n";
}
