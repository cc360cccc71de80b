#pragma once

#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "VelmoraCore/EventData.h"
#include "services/filesystem/NativeCompressedFileService.h"
#include "services/network/NativeRemoteFileManagerService.h"
#include "services/system/NativeEncodingService.h"
#include "services/ui/KRVMessagesMonitor.h"
#include "services/ui/NativeUiService.h"
#include "support/ZipBuilder.h"
#include "unit/core/hub/CoreFixture.h"

// A core whose rules come in real archives through the real services, on a device whose URL session
// and screen the test plays.
class RulesFixture : public CoreFixture {
 protected:
  static constexpr const char* kUrl = "https://example.com/rules.zip";

  RulesFixture() {
    KRVMessagesMonitor().dismissed();
    services->compressedFile = Velmora::CreateNativeCompressedFileService();
    services->remoteFileManager = Velmora::CreateNativeRemoteFileManagerService(
        services->network, services->fileSystem, services->systemInfo);
    services->ui = Velmora::CreateNativeUiService();
    services->encoding = Velmora::CreateNativeEncodingService();
    log.AllowLines(TestSupport::LogLevel::Debug, "RemoteFileManager: ", testing::_);
    log.AllowLines(TestSupport::LogLevel::Debug, "NativeFileSystemService", testing::_);
  }
  ~RulesFixture() override {
    core = nullptr;
    host.mainQueue->RunAll();
    KRVMessagesMonitor().dismissed();
  }

  static std::string RulesFile(const std::string& rules) {
    return R"({"version": 1, "rules": [)" + rules + "]}";
  }
  // A rule for events of type "shop" and source "visit".
  static std::string RuleThen(const std::string& id, const std::string& then,
                              const std::string& more = "") {
    return R"({"id": ")" + id + R"(", )" + more +
           R"("if": {"and": [{"field": "type", "equals": "shop"},
                             {"field": "source", "equals": "visit"}]}, "then": )" +
           then + "}";
  }
  static std::string Archive(const std::string& rules,
                             const std::map<std::string, std::string>& files = {}) {
    std::vector<TestSupport::ZipEntry> entries{
        TestSupport::DeflatedEntry("rules.json", RulesFile(rules))};
    for (const auto& [name, contents] : files) {
      entries.push_back(TestSupport::DeflatedEntry(name, contents));
    }
    return TestSupport::ArchiveOf(entries);
  }

  std::string Sha256Of(const std::string& bytes) const {
    return services->crypto->GetSha256Hash(bytes);
  }

  void AnswerWith(std::int32_t status, const std::string& body) {
    host.urlSession->SetServer(
        [answer = TestSupport::FakeUrlSession::Respond(status, body, {{"ETag", "\"tag\""}})](
            const Platform::UrlRequest&) { return answer; });
  }
  void Configure(const std::string& url, const std::string& sha256) {
    core->UpdateConfiguration({{"rules.url", Velmora::Variant::FromString(url)},
                               {"rules.sha256", Velmora::Variant::FromString(sha256)}});
  }

  // Publishes an archive, names it in the configuration and asks for it.
  void Download(const std::string& archive) {
    AnswerWith(200, archive);
    Configure(kUrl, Sha256Of(archive));
    core->DownloadRules();
  }

  // The same, and waits until it serves and what it replaces has gone.
  void Install(const std::string& archive) {
    Download(archive);
    EXPECT_TRUE(TestSupport::WaitUntil([&] { return Serving() == Sha256Of(archive); }));
    Settle();
  }

  // The SHA-256 of the archive whose rules serve; empty when there are none.
  std::string Serving() const {
    const std::string state = StateOf("rules");
    const std::string key = R"("sha256":")";
    const std::size_t begin = state.find(key);
    return begin == std::string::npos ? "" : state.substr(begin + key.size(), 64);
  }

  // The events that tell what became of rules: "<rule> <consequence> <outcome>".
  std::vector<std::string> Outcomes() const {
    std::vector<std::string> outcomes;
    for (const EventPointer& event : listener->Heard()) {
      if (event->GetType() != EventTypes::kRules || event->GetSource() != EventSources::kResponse) {
        continue;
      }
      const auto text = [&](const char* key) { return event->GetData()->Get(key)->GetString(); };
      outcomes.push_back(text(EventKeys::kRule) + " " + text(EventKeys::kConsequence) + " " +
                         text(EventKeys::kOutcome));
    }
    return outcomes;
  }
  bool WaitForOutcomes(const std::vector<std::string>& outcomes) const {
    return TestSupport::WaitUntil([&] { return Outcomes() == outcomes; });
  }

  // The visitor comes; everything that this sets off on the hub's thread has happened then.
  void Visit(const Velmora::VariantMap& data = {}) {
    EXPECT_EQ(Dispatch(std::make_shared<Velmora::Event>(
                  "visit", "shop", "visit", std::make_shared<Velmora::EventData>(data))),
              "");
    Settle();
  }

  // After the rest that a rule takes.
  void VisitLater() {
    clock->Advance(std::chrono::seconds(1));
    Visit();
  }

  std::string RulesRoot() const {
    return services->systemInfo->GetApplicationCacheDir() + "/velmorarules";
  }
  std::vector<std::string> RulesFolders() const {
    std::vector<std::string> names;
    for (auto& entry : host.fileManager->ContentsOfDirectory(RulesRoot(), nullptr)) {
      names.push_back(entry.name);
    }
    return names;
  }
};
