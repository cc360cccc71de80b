#pragma once

#include <atomic>
#include <map>
#include <string>

#include "support/Guarded.h"
#include "support/tls/LoopbackServer.h"

// What the loopback server answers (see CaseServer). Used on the threads of its connections.
class CaseAnswers {
 public:
  CaseAnswers();

  void PutFile(const std::string& name, const std::string& contents);
  void RemoveFile(const std::string& name);
  int Hanging() const { return hanging_; }

  void operator()(const TestSupport::WireRequest& request, TestSupport::WireConnection& connection);

 private:
  struct File {
    std::string contents;
    std::string tag;
  };
  using Files = std::map<std::string, File>;

  void AnswerLive(const std::string& name, const TestSupport::WireRequest& request,
                  TestSupport::WireConnection& connection);
  void AnswerFile(const TestSupport::WireRequest& request, TestSupport::WireConnection& connection);

  TestSupport::Guarded<Files> files_;
  std::atomic<int> lastTag_{0};
  std::atomic<int> hanging_{0};
};
