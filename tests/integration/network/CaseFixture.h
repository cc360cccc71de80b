#pragma once

#include <chrono>
#include <map>
#include <memory>
#include <string>

#include <gmock/gmock.h>

#include "CaseServer.h"
#include "NetworkFixture.h"
#include "support/UrlSessionCalls.h"

using ServerMaker = std::unique_ptr<CaseServer> (*)();

// Runs the services over each server in turn. The servers of a program are shared by its tests.
class CaseFixture : public NetworkFixture, public testing::WithParamInterface<ServerMaker> {
 protected:
  CaseServer& Server() const {
    static std::map<ServerMaker, std::unique_ptr<CaseServer>> servers;
    std::unique_ptr<CaseServer>& server = servers[GetParam()];
    if (server == nullptr) server = GetParam()();
    return *server;
  }
  std::string Url(const std::string& path) const { return Server().Url(path); }

  TestSupport::UrlOutcome Fetch(const std::string& url) const {
    return TestSupport::Fetch(*session, url);
  }

  // With a second's patience where nothing comes.
  TestSupport::UrlOutcome FetchImpatiently(const std::string& url) const {
    Platform::UrlRequest request = TestSupport::RequestFor(url);
    request.idleTimeout = std::chrono::seconds(1);
    request.wholeTimeout = std::chrono::seconds(20);
    return TestSupport::Fetch(*session, request);
  }
};

inline std::string NameOfServer(const testing::TestParamInfo<ServerMaker>& info) {
  if (info.param == &MakeLoopbackServer) return "Loopback";
  return info.param == &MakeNginx2Server ? "NginxOverHttp2" : "NginxOverHttp1";
}

// Has the cases of a fixture run over every server.
#define OVER_EVERY_SERVER(fixture)                                                               \
  INSTANTIATE_TEST_SUITE_P(                                                                      \
      Over, fixture, testing::Values(&MakeLoopbackServer, &MakeNginx1Server, &MakeNginx2Server), \
      &NameOfServer)
