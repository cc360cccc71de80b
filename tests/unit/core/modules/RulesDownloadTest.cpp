#include <atomic>
#include <filesystem>
#include <string>
#include <vector>

#include "unit/core/modules/RulesFixture.h"

namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;
using TestSupport::FileFault;
using TestSupport::LogLevel;

constexpr const char* kOpen = R"({"open": {"url": "https://example.com/sale"}})";

// Counts what is unpacked.
class CountingZipService final : public Velmora::NativeCompressedFileService {
 public:
  bool Extract(const std::string& archivePath, Velmora::CompressedFileType type,
               const std::string& destination) override {
    ++count;
    const bool isDone =
        Velmora::NativeCompressedFileService::Extract(archivePath, type, destination);
    ++doneCount;
    return isDone;
  }

  std::atomic<int> count{0};
  std::atomic<int> doneCount{0};
};

class RulesDownloadTest : public RulesFixture {
 protected:
  RulesDownloadTest() { services->compressedFile = zip; }

  // Asks for an archive that cannot be used: one error line says why, and the rules that served
  // before still do.
  void ExpectRefused(const std::string& archive, const testing::Matcher<std::string>& line) {
    const std::string former = Serving();
    const std::vector<std::string> folders = RulesFolders();
    Download(archive);
    EXPECT_TRUE(log.WaitForLine(LogLevel::Error, "Rules",
                                AllOf(StartsWith("the rules stay as they are: "), line)));
    Settle();
    EXPECT_EQ(Serving(), former);
    EXPECT_EQ(RulesFolders(), folders);
  }

  static std::string ArchiveWithRulesFile(const std::string& text) {
    return TestSupport::ArchiveOf({TestSupport::StoredEntry("rules.json", text)});
  }

  const std::shared_ptr<CountingZipService> zip = std::make_shared<CountingZipService>();
};

TEST_F(RulesDownloadTest, FetchesTheArchiveThatTheConfigurationNames) {
  StartCore();
  EXPECT_EQ(StateOf("rules"), "none");
  const std::string archive = Archive(RuleThen("a", kOpen) + "," + RuleThen("b", kOpen));
  Install(archive);
  ASSERT_THAT(host.urlSession->Requests(), SizeIs(1));
  EXPECT_EQ(host.urlSession->Requests()[0].url, kUrl);
  EXPECT_EQ(StateOf("rules"), R"({"count":2,"sha256":")" + Sha256Of(archive) + R"("})");
  EXPECT_THAT(RulesFolders(), SizeIs(1));
}

TEST_F(RulesDownloadTest, UnpacksNothingWhoseHashIsNotTheOneConfigured) {
  StartCore();
  Install(Archive(RuleThen("good", kOpen)));
  const std::string former = Serving();
  const std::string archive = Archive(RuleThen("evil", kOpen));
  AnswerWith(200, archive);
  Configure(kUrl, std::string(64, 'A'));
  core->DownloadRules();
  EXPECT_TRUE(log.WaitForLine(LogLevel::Error, "Rules",
                              "the rules stay as they are: their archive is not used: its SHA-256 "
                              "is " +
                                  Sha256Of(archive) + ", and not " + std::string(64, 'a')));
  EXPECT_EQ(zip->count, 1);
  EXPECT_EQ(Serving(), former);
  EXPECT_THAT(RulesFolders(), SizeIs(1));
}

TEST_F(RulesDownloadTest, AsksForTheWholeArchiveAnewAfterAWrongOne) {
  StartCore();
  const auto isConditional =
      testing::Contains(testing::Field(&Platform::UrlHeader::name, "If-None-Match"));
  ExpectRefused("no archive at all", HasSubstr("File does not appear to be a zip file"));
  Configure(kUrl, std::string(64, 'a'));
  core->DownloadRules();
  EXPECT_TRUE(log.WaitForLine(LogLevel::Error, "Rules", HasSubstr("its SHA-256 is ")));
  core->DownloadRules();
  EXPECT_TRUE(log.WaitForLine(LogLevel::Error, "Rules", HasSubstr("its SHA-256 is ")));
  ASSERT_THAT(host.urlSession->Requests(), SizeIs(3));
  EXPECT_THAT(host.urlSession->Requests()[1].headers, isConditional);
  EXPECT_THAT(host.urlSession->Requests()[2].headers, testing::Not(isConditional));
}

TEST_F(RulesDownloadTest, TakesTheHashInUpperCaseToo) {
  StartCore();
  const std::string archive = Archive(RuleThen("a", kOpen));
  std::string hash = Sha256Of(archive);
  for (char& digit : hash) {
    if (digit >= 'a') digit = static_cast<char>(digit - 'a' + 'A');
  }
  AnswerWith(200, archive);
  Configure(kUrl, hash);
  core->DownloadRules();
  EXPECT_TRUE(TestSupport::WaitUntil([&] { return Serving() == Sha256Of(archive); }));
  Settle();
}

TEST_F(RulesDownloadTest, BrokenArchivesLeaveTheOldRulesAndNothingElse) {
  StartCore();
  Install(Archive(RuleThen("good", kOpen)));
  ExpectRefused("", HasSubstr("File does not appear to be a zip file"));
  const std::string whole = Archive(RuleThen("bad", kOpen), {{"a.html", std::string(5'000, 'x')}});
  ExpectRefused(whole.substr(0, whole.size() / 2), HasSubstr("compressed-file."));
  auto wrong = TestSupport::DeflatedEntry("rules.json", RulesFile(RuleThen("bad", kOpen)));
  wrong.central.crc ^= 1U;
  ExpectRefused(
      TestSupport::ArchiveOf({TestSupport::StoredEntry("first.html", "left over"), wrong}),
      HasSubstr("CRC32 mismatch for rules.json"));
}

TEST_F(RulesDownloadTest, BrokenRulesLeaveTheOldOnesAndNothingElse) {
  StartCore();
  Install(Archive(RuleThen("good", kOpen)));
  constexpr const char* kNoObject = "\"rules.json\" does not hold a JSON object";
  ExpectRefused(TestSupport::ArchiveOf({TestSupport::StoredEntry("other.json", "{}")}),
                HasSubstr("\"rules.json\" cannot be read: "));
  ExpectRefused(TestSupport::ArchiveOf({TestSupport::DirectoryEntry("rules.json/")}),
                HasSubstr("\"rules.json\" cannot be read: it is a directory"));
  ExpectRefused(ArchiveWithRulesFile(""), HasSubstr(kNoObject));
  ExpectRefused(ArchiveWithRulesFile("{\"version\": 1, \"rules\": ["), HasSubstr(kNoObject));
  ExpectRefused(ArchiveWithRulesFile("[]"), HasSubstr(kNoObject));
  ExpectRefused(ArchiveWithRulesFile("{\"a\":" + std::string(900'000, '[')), HasSubstr(kNoObject));
  ExpectRefused(ArchiveWithRulesFile("\xFF\xFE"), HasSubstr("\"rules.json\" cannot be read: "));
  ExpectRefused(ArchiveWithRulesFile(R"({"version": 9, "rules": []})"),
                HasSubstr("\"rules.json\" cannot be used: \"version\" is not 1"));
  ExpectRefused(ArchiveWithRulesFile(std::string(1024 * 1024 + 1, ' ')),
                HasSubstr("\"rules.json\" cannot be read: it is too long"));
}

TEST_F(RulesDownloadTest, LeavesOutARuleWhoseFileIsNotInTheArchive) {
  StartCore();
  log.ExpectLine(LogLevel::Warning, "Rules",
                 "the rule \"b\" is not used: there is no file \"missing.html\"");
  log.ExpectLine(LogLevel::Warning, "Rules",
                 "the rule \"c\" is not used: there is no file \"folder\"");
  TestSupport::ZipArchive archive;
  archive.entries = {
      TestSupport::StoredEntry(
          "rules.json", RulesFile(RuleThen("a", R"({"message": {"html": "a.html"}})") + "," +
                                  RuleThen("b", R"({"message": {"html": "missing.html"}})") + "," +
                                  RuleThen("c", R"({"message": {"html": "folder"}})"))),
      TestSupport::StoredEntry("a.html", "<p>"), TestSupport::DirectoryEntry("folder/")};
  Install(TestSupport::BytesOf(archive));
  EXPECT_THAT(StateOf("rules"), HasSubstr(R"("count":1)"));
}

TEST_F(RulesDownloadTest, RefusesAnArchiveThatIsTooLarge) {
  StartCore();
  ExpectRefused(std::string(16 * 1024 * 1024 + 1, 'x'), HasSubstr("it is larger than 16 MiB"));
  EXPECT_EQ(zip->count, 0);
}

TEST_F(RulesDownloadTest, AnErrorOfTheServerIsOneLine) {
  StartCore();
  AnswerWith(404, "");
  Configure(kUrl, std::string(64, 'a'));
  core->DownloadRules();
  EXPECT_TRUE(log.WaitForLine(LogLevel::Error, "Rules",
                              "the rules stay as they are: their archive cannot be had: "
                              "remotefilemanager.request_failed: 404"));
}

TEST_F(RulesDownloadTest, AConfigurationWithoutRulesIsOneLine) {
  StartCore();
  const auto expect = [this] {
    core->DownloadRules();
    EXPECT_TRUE(log.WaitForLine(LogLevel::Warning, "Rules",
                                "the configuration names no rules: \"rules.url\" must be a URL and "
                                "\"rules.sha256\" 64 hexadecimal digits"));
  };
  expect();
  Configure("no url", std::string(64, 'a'));
  expect();
  Configure(kUrl, std::string(63, 'a'));
  expect();
  Configure(kUrl, std::string(63, 'a') + "g");
  expect();
  core->UpdateConfiguration({{"rules.url", Velmora::Variant::FromLong(1)}});
  expect();
  EXPECT_THAT(host.urlSession->Requests(), IsEmpty());
}

TEST_F(RulesDownloadTest, MissingServicesAreOneLine) {
  const auto expectMissing = [this](auto service, const std::string& name) {
    const auto kept = std::exchange((*services).*service, nullptr);
    StartCore();
    log.ExpectLine(LogLevel::Error, "Rules",
                   "no rules can be had: there is no " + name + " service");
    core->DownloadRules();
    Finish();
    core = nullptr;
    (*services).*service = kept;
  };
  using Services = TestSupport::FakePlatformServices;
  expectMissing(&Services::fileSystem, "file system");
  expectMissing(&Services::crypto, "crypto");
  expectMissing(&Services::compressedFile, "compressed file");
  expectMissing(&Services::remoteFileManager, "remote file");
}

TEST_F(RulesDownloadTest, TheLastGoodRulesServeFromTheFirstEventOfTheNextStart) {
  StartCore();
  Install(Archive(RuleThen("a", kOpen)));
  const std::string hash = Serving();
  Finish();
  core = nullptr;
  host.urlSession->SetServer([](const auto&) {
    return TestSupport::FakeUrlSession::Fail(Platform::UrlFailure::NotConnected);
  });
  StartCore();
  Visit();
  EXPECT_THAT(host.application->OpenedUrls(), ElementsAre("https://example.com/sale"));
  EXPECT_EQ(Serving(), hash);
  // Offline, nothing comes of a request.
  log.AllowLines(LogLevel::Debug, "NativeNetworkService", testing::_);
  Configure(kUrl, std::string(64, 'a'));
  core->DownloadRules();
  Settle();
  EXPECT_EQ(Serving(), hash);
}

TEST_F(RulesDownloadTest, NewRulesTakeThePlaceOfTheOldOnes) {
  StartCore();
  Install(Archive(RuleThen("a", kOpen)));
  const std::vector<std::string> before = RulesFolders();
  Install(Archive(""));
  EXPECT_THAT(RulesFolders(), AllOf(SizeIs(1), testing::Ne(before)));
  Visit();
  EXPECT_THAT(host.application->OpenedUrls(), IsEmpty());
  Restart();
  Visit();
  EXPECT_THAT(host.application->OpenedUrls(), IsEmpty());
}

TEST_F(RulesDownloadTest, RulesThatServeAlreadyAreNotUnpackedAgain) {
  StartCore();
  const std::string archive = Archive(RuleThen("a", kOpen));
  Install(archive);
  core->DownloadRules();
  EXPECT_TRUE(log.WaitForLine(LogLevel::Debug, "Rules",
                              "the rules that the configuration names serve already"));
  EXPECT_EQ(zip->count, 1);
}

TEST_F(RulesDownloadTest, ADeviceThatCannotBeWrittenToLeavesTheOldRules) {
  StartCore();
  Install(Archive(RuleThen("good", kOpen)));
  log.AllowLines(LogLevel::Error, "NativeFileSystemService", testing::_);
  host.fileManager->Fail(FileFault::OpenForWriting);
  ExpectRefused(Archive(RuleThen("new", kOpen)), HasSubstr("it cannot be written to "));
  host.fileManager->Heal();
  host.fileManager->Fail(FileFault::CreateDirectory);
  ExpectRefused(Archive(RuleThen("newer", kOpen)), HasSubstr("The device failed."));
  host.fileManager->Heal();
  Install(Archive(RuleThen("newest", kOpen)));
}

TEST_F(RulesDownloadTest, AFullDeviceLeavesTheOldRules) {
  StartCore();
  const std::string archive = Archive("", {{"a.html", std::string(100'000, 'x')}});
  host.fileManager->FailWritesAfter(archive.size() + 50'000);
  ExpectRefused(archive, HasSubstr("compressed-file."));
}

TEST_F(RulesDownloadTest, WhereverWritingStopsTheOldRulesServeWholeUntilTheNewOnesDo) {
  StartCore();
  const std::string former =
      Archive(RuleThen("old", R"({"message": {"html": "a.html"}})"), {{"a.html", "old"}});
  Install(former);
  const std::string next = Archive(RuleThen("new", R"({"message": {"html": "a.html"}})"),
                                   {{"a.html", std::string(200, 'n')}});
  for (std::uint64_t bytes = 0; Serving() != Sha256Of(next); bytes += 50) {
    SCOPED_TRACE(bytes);
    ASSERT_LT(bytes, 10'000U) << "there is no end to it";
    host.fileManager->FailWritesAfter(bytes);
    Download(next);
    std::vector<TestSupport::LogLine> lines;
    ASSERT_TRUE(TestSupport::WaitUntil([&] {
      lines = log.TakeLines();
      return !lines.empty() || Serving() == Sha256Of(next);
    }));
    EXPECT_THAT(lines, SizeIs(Serving() == Sha256Of(next) ? 0 : 1));
    host.fileManager->Heal();
    Restart();
    Settle();
    ASSERT_THAT(Serving(), testing::AnyOf(Sha256Of(former), Sha256Of(next)));
    EXPECT_THAT(StateOf("rules"), HasSubstr(R"("count":1)"));
  }
}

TEST_F(RulesDownloadTest, WithoutADataStoreRulesServeButAreNotRemembered) {
  services->localStorage = nullptr;
  for (const char* other : {"Analytics", "Configuration", "Identity", "Lifecycle"}) {
    log.AllowLines(LogLevel::Warning, other, HasSubstr("no data store"));
  }
  log.ExpectLine(LogLevel::Warning, "Rules",
                 "the rules will not be remembered: there is no data store that works");
  log.AllowLines(LogLevel::Warning, "Identity", testing::HasSubstr("no data store"));
  StartCore();
  Install(Archive(RuleThen("a", kOpen, R"("once": true, )")));
  Visit();
  VisitLater();
  EXPECT_THAT(host.application->OpenedUrls(), SizeIs(1));
}

TEST_F(RulesDownloadTest, RulesThatHaveGoneFromTheDeviceCanBeFetchedAgain) {
  StartCore();
  const std::string archive = Archive(RuleThen("a", kOpen));
  Install(archive);
  Finish();
  core = nullptr;
  std::filesystem::remove_all(RulesRoot());
  StartCore();
  log.ExpectLine(LogLevel::Error, "Rules",
                 StartsWith("the rules of the last start cannot be used: \"rules.json\" cannot be "
                            "read: "));
  Visit();
  EXPECT_EQ(Serving(), "");
  Install(archive);
}

TEST_F(RulesDownloadTest, ARememberedFolderOutsideTheirOwnIsNotLookedAt) {
  services->localStorage->GetDataStore("KorvoMobile_Rules")
      ->SetMap("Current", {{"folder", "../secrets"}, {"sha256", "a"}});
  log.ExpectLine(LogLevel::Error, "Rules",
                 "the rules of the last start cannot be used: their folder is not known");
  StartCore();
  Settle();
}

TEST_F(RulesDownloadTest, TidiesUpWhatAnEarlierProcessLeftOver) {
  StartCore();
  Install(Archive(RuleThen("a", kOpen)));
  Finish();
  core = nullptr;
  const std::vector<std::string> good = RulesFolders();
  const std::string leftOver = RulesRoot() + "/0123ABCD-0000/deep/down";
  std::filesystem::create_directories(leftOver);
  EXPECT_TRUE(host.fileManager->WriteFile(leftOver + "/a.html", "a", nullptr));
  EXPECT_TRUE(host.fileManager->WriteFile(RulesRoot() + "/0123ABCD-0000.zip", "z", nullptr));
  StartCore();
  Download(Archive(RuleThen("a", kOpen)));
  EXPECT_TRUE(log.WaitForLine(LogLevel::Debug, "Rules",
                              "the rules that the configuration names serve already"));
  EXPECT_EQ(RulesFolders(), good);
}

TEST_F(RulesDownloadTest, ADownloadMayOutliveTheCore) {
  const std::string archive = Archive(RuleThen("a", kOpen));
  Gate gate;
  StartCore();
  host.urlSession->SetServer([&](const Platform::UrlRequest&) {
    gate.Pass();
    return TestSupport::FakeUrlSession::Respond(200, archive, {{"ETag", "tag"}});
  });
  Configure(kUrl, Sha256Of(archive));
  core->DownloadRules();
  gate.AwaitArrivals();
  Finish();
  core = nullptr;
  gate.Open();
  // Unpacked for nobody, and gone with the next download.
  EXPECT_TRUE(TestSupport::WaitUntil([&] { return zip->doneCount == 1; }));
  EXPECT_TRUE(TestSupport::WaitUntil([&] { return RulesFolders().size() == 1; }));
  const std::vector<std::string> orphans = RulesFolders();
  StartCore();
  Install(archive);
  EXPECT_THAT(RulesFolders(), AllOf(SizeIs(1), testing::Ne(orphans)));
}

}  // namespace
