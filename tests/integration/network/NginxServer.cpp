#include "NginxServer.h"

#include <csignal>
#include <filesystem>
#include <stdexcept>

#include "support/UrlSessionCalls.h"
#include "support/WaitUntil.h"
#include "support/tls/TrustedServer.h"

namespace {

constexpr int kAttempts = 5;  // somebody else may take a port meanwhile
constexpr int kCertificates = static_cast<int>(ServerCertificate::OfAnUnknownAuthority) + 1;

std::string NameOf(ServerCertificate certificate) {
  return "server" + std::to_string(static_cast<int>(certificate));
}

// The pages that nginx answers by itself, beside its files.
constexpr const char* kPages =
    "  add_header X-Protocol $server_protocol always;\n"
    "  location = /moved { return 301 /hello.txt; }\n"
    "  location = /cleartext { return 301 http://127.0.0.1/; }\n"
    "  location = /none { return 204; }\n"
    "  location = /unchanged { return 304; }\n"
    "  location = /no-range { return 416 'no such range'; }\n"
    "  location = /broken { return 500; }\n"
    "  location = /agent { return 200 $http_user_agent; }\n"
    "  set $conditions 'since $http_if_modified_since match $http_if_none_match';\n"
    "  location = /bare { return 200 $conditions; }\n"
    "  location = /dated {\n"
    "    add_header Last-Modified 'Tue, 05 Mar 2024 10:20:30 GMT';\n"
    "    return 200 $conditions;\n  }\n"
    "  location = /tagged {\n"
    "    add_header Last-Modified 'Tue, 05 Mar 2024 10:20:30 GMT';\n"
    "    add_header ETag 'W/\"a b\"';\n"
    "    return 200 $conditions;\n  }\n"
    "  location = /reset { return 444; }\n";

}  // namespace

NginxServer::NginxServer(Protocol protocol) : protocol_(protocol) {
  WriteIdentities();
  PutFile("hello.txt", "hello\n");
  for (int attempt = 0; attempt < kAttempts; ++attempt) {
    Start();
    if (TestSupport::WaitUntil([this] { return program_->HasEnded() || Answers(); }) &&
        !program_->HasEnded()) {
      return;
    }
  }
  throw std::runtime_error("nginx does not answer: " +
                           TestSupport::ReadFileBytes(folder_.PathOf("error.log")));
}

std::string NginxServer::Url(const std::string& path, ServerCertificate certificate) const {
  return "https://127.0.0.1:" + std::to_string(ports_.at(certificate)) + path;
}

void NginxServer::PutFile(const std::string& name, const std::string& contents) {
  folder_.WriteFile("www/" + name, contents);
}

void NginxServer::RemoveFile(const std::string& name) {
  std::filesystem::remove(folder_.PathOf("www/" + name));
}

// The system accepts connections for a process that is stopped.
std::string NginxServer::SilentUrl() {
  silent_ = std::make_unique<NginxServer>(protocol_);
  silent_->program_->Signal(SIGSTOP);
  return silent_->Url("/");
}

void NginxServer::WriteIdentities() const {
  for (int i = 0; i < kCertificates; ++i) {
    const auto certificate = static_cast<ServerCertificate>(i);
    const DevServer::Identity identity = IdentityWith(certificate);
    folder_.WriteFile(NameOf(certificate) + ".pem", identity.certificate);
    folder_.WriteFile(NameOf(certificate) + ".key", identity.key);
  }
}

void NginxServer::Start() {
  for (int i = 0; i < kCertificates; ++i) ports_[static_cast<ServerCertificate>(i)] = FreePort();
  const std::string configuration = folder_.WriteFile("nginx.conf", Configuration());
  program_ = std::make_unique<ChildProgram>(
      std::vector<std::string>{"/usr/sbin/nginx", "-p", folder_.Path(), "-c", configuration, "-e",
                               folder_.PathOf("error.log")},
      "");
}

bool NginxServer::Answers() const {
  Platform::CurlUrlSession session(TestSupport::TrustedServer::SessionOptions());
  return TestSupport::Fetch(session, Url("/hello.txt")).response != nullptr;
}

std::string NginxServer::Configuration() const {
  std::string servers;
  for (const auto& [certificate, port] : ports_) servers += ServerBlock(certificate);
  return "daemon off;\nmaster_process off;\npid nginx.pid;\nworker_rlimit_nofile 4096;\n"
         "events { worker_connections 2048; }\nhttp {\n"
         "access_log off;\nclient_body_temp_path body;\nproxy_temp_path proxy;\n"
         "fastcgi_temp_path fastcgi;\nuwsgi_temp_path uwsgi;\nscgi_temp_path scgi;\n"
         "types { text/plain txt; application/json json; }\ndefault_type text/plain;\n"
         "gzip on;\ngzip_min_length 0;\ngzip_types application/json;\n"
         "reset_timedout_connection on;\nssl_session_cache off;\nabsolute_redirect off;\n" +
         servers + "}\n";
}

std::string NginxServer::ServerBlock(ServerCertificate certificate) const {
  const std::string name = NameOf(certificate);
  return "server {\n  listen 127.0.0.1:" + std::to_string(ports_.at(certificate)) + " ssl" +
         (protocol_ == Protocol::Http2 ? " http2" : "") + ";\n  ssl_certificate " + name +
         ".pem;\n  ssl_certificate_key " + name + ".key;\n  root " + folder_.PathOf("www") + ";\n" +
         kPages + "  location /live/ {\n    proxy_pass " + behind_.Url("") +
         ";\n    proxy_http_version 1.1;\n    proxy_buffering off;\n  }\n}\n";
}
