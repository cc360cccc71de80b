#pragma once

#include <map>
#include <memory>
#include <string>

#include "CaseAnswers.h"
#include "CaseServer.h"
#include "ChildProgram.h"
#include "support/TemporaryDirectory.h"

// nginx, with everything that it writes in a folder of its own.
class NginxServer final : public CaseServer {
 public:
  enum class Protocol { Http1, Http2 };

  // Waits until it answers. Throws std::runtime_error when it does not.
  explicit NginxServer(Protocol protocol);

  std::string Url(const std::string& path,
                  ServerCertificate certificate = ServerCertificate::Trusted) const override;
  void PutFile(const std::string& name, const std::string& contents) override;
  void RemoveFile(const std::string& name) override;
  int Hanging() const override { return answers_.Hanging(); }
  std::string SilentUrl() override;

 private:
  void WriteIdentities() const;
  void Start();
  bool Answers() const;
  std::string Configuration() const;
  std::string ServerBlock(ServerCertificate certificate) const;

  const Protocol protocol_;
  const TestSupport::TemporaryDirectory folder_;
  CaseAnswers answers_;
  const TestSupport::LoopbackServer behind_{{}, std::ref(answers_)};
  std::map<ServerCertificate, int> ports_;
  std::unique_ptr<ChildProgram> program_;
  std::unique_ptr<NginxServer> silent_;
};
