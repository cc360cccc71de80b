#include "CaseServer.h"

#include <chrono>
#include <map>

#include "CaseAnswers.h"
#include "NginxServer.h"
#include "support/tls/TrustedServer.h"

DevServer::Identity IdentityWith(ServerCertificate certificate) {
  using namespace std::chrono_literals;
  const DevServer::Identity& authority = TestSupport::TrustedServer::Authority();
  DevServer::CertificateWish wish;
  switch (certificate) {
    case ServerCertificate::Trusted:
      break;
    case ServerCertificate::Expired:
      wish.notBefore = -48h;
      wish.notAfter = -1h;
      break;
    case ServerCertificate::NotYetValid:
      wish.notBefore = 1h;
      break;
    case ServerCertificate::SelfSigned:
      return DevServer::MakeSelfSignedIdentity(wish);
    case ServerCertificate::OfAnotherHost:
      wish.name = "127.0.0.1";  // the common name counts for nothing
      wish.hosts = {"DNS:example.com", "IP:127.0.0.2"};
      break;
    case ServerCertificate::OfAnUnknownAuthority:
      return DevServer::MakeServerIdentity(DevServer::MakeAuthority("Unknown"), wish);
  }
  return DevServer::MakeServerIdentity(authority, wish);
}

namespace {

using TestSupport::LoopbackServer;

class LoopbackCaseServer final : public CaseServer {
 public:
  LoopbackCaseServer() {
    for (int i = 0; i <= static_cast<int>(ServerCertificate::OfAnUnknownAuthority); ++i) {
      const auto certificate = static_cast<ServerCertificate>(i);
      servers_[certificate] = std::make_unique<LoopbackServer>(
          LoopbackServer::Options{.identity = IdentityWith(certificate)}, std::ref(answers_));
    }
  }

  std::string Url(const std::string& path, ServerCertificate certificate) const override {
    return servers_.at(certificate)->Url(path);
  }
  void PutFile(const std::string& name, const std::string& contents) override {
    answers_.PutFile(name, contents);
  }
  void RemoveFile(const std::string& name) override { answers_.RemoveFile(name); }
  int Hanging() const override { return answers_.Hanging(); }

  std::string SilentUrl() override {
    silent_ = std::make_unique<LoopbackServer>(
        LoopbackServer::Options{.identity = IdentityWith(ServerCertificate::Trusted),
                                .hangsAfterAccept = true},
        nullptr);
    return silent_->Url("/");
  }

 private:
  CaseAnswers answers_;
  std::map<ServerCertificate, std::unique_ptr<LoopbackServer>> servers_;
  std::unique_ptr<LoopbackServer> silent_;
};

}  // namespace

std::unique_ptr<CaseServer> MakeLoopbackServer() { return std::make_unique<LoopbackCaseServer>(); }

std::unique_ptr<CaseServer> MakeNginx1Server() {
  return std::make_unique<NginxServer>(NginxServer::Protocol::Http1);
}

std::unique_ptr<CaseServer> MakeNginx2Server() {
  return std::make_unique<NginxServer>(NginxServer::Protocol::Http2);
}
