// How downloads are stored, revalidated and served.

#include <cstdint>
#include <filesystem>
#include <limits>
#include <memory>
#include <string>

#include <gmock/gmock.h>

#include "RemoteFileFixture.h"
#include "VelmoraCore/SdkError.h"
#include "services/network/RemoteFileCache.h"

namespace {

namespace fs = std::filesystem;

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Pair;
using testing::SizeIs;
using testing::StartsWith;
using testing::UnorderedElementsAre;
using TestSupport::FileFault;
using TestSupport::LogLevel;
using TestSupport::ReadFileBytes;

class RemoteFileCacheTest : public RemoteFileFixture {
 protected:
  void ExpectWarning(const TestSupport::LogCapture::TextMatcher& message) {
    log.ExpectLine(LogLevel::Warning, kTag, message);
  }
  void ExpectError(const TestSupport::LogCapture::TextMatcher& message) {
    log.ExpectLine(LogLevel::Error, kTag, message);
  }
  void ExpectDebug(const TestSupport::LogCapture::TextMatcher& message) {
    log.ExpectLine(LogLevel::Debug, kTag, message);
  }

  // Answers 200 with a date and this entity tag.
  void AnswerWithTag(const std::string& tag, const std::string& body = "new") {
    AnswerWith(200, body, {{"Last-Modified", kDate}, {"ETag", tag}});
  }

  // The headers with which a cached file of that name is revalidated.
  Headers RevalidationOf(const std::string& nameAfterDigest) {
    const std::string path = Plant(kDigest + nameAfterDigest);
    AnswerWith(304);
    EXPECT_EQ(Get(), path);
    fs::remove(path);
    return LastHeaders();
  }

  std::string PathOf(const std::string& nameAfterDigest, const std::string& subFolder = "") const {
    return CacheFolder(subFolder) + "/" + kDigest + nameAfterDigest;
  }
};

TEST_F(RemoteFileCacheTest, StoresTheBodyUnderDigestDateAndTag) {
  AnswerWithTag("\"ab\"", std::string("zip\0bytes", 9));
  EXPECT_EQ(Get(), PathOf(".1709634030_22616222"));
  EXPECT_EQ(ReadFileBytes(PathOf(".1709634030_22616222")), std::string("zip\0bytes", 9));
  EXPECT_THAT(Cached(), SizeIs(1));
  EXPECT_THAT(LastHeaders(), IsEmpty());
}

TEST_F(RemoteFileCacheTest, StoresIntoTheSubFolder) {
  AnswerWithTag("\"ab\"");
  EXPECT_EQ(Get(kUrl, "rules"), PathOf(".1709634030_22616222", "rules"));
  EXPECT_THAT(Cached("rules"), SizeIs(1));
  EXPECT_EQ(TextOf(manager->GetFileFromCache(kUrl, "")),
            "remotefilemanager.cache_failed: URL not cached");
}

TEST_F(RemoteFileCacheTest, SaysWhichHeadersTheServerLeftOut) {
  AnswerWith(200, "body");
  ExpectDebug(std::string("Server did not return Last-Modified for ") + kUrl);
  ExpectDebug(std::string("Server did not return ETag for ") + kUrl);
  EXPECT_EQ(Get(), PathOf(".0_"));
}

TEST_F(RemoteFileCacheTest, TakesADateThatCannotBeReadForNone) {
  AnswerWith(200, "body", {{"Last-Modified", "yesterday"}, {"ETag", "1"}});
  EXPECT_EQ(Get(), PathOf(".0_31"));
}

TEST_F(RemoteFileCacheTest, StoresA416LikeA200) {
  AnswerWith(416, "range", {{"Last-Modified", kDate}, {"ETag", "\"r\""}});
  EXPECT_EQ(Get(), PathOf(".1709634030_227222"));
  EXPECT_EQ(ReadFileBytes(PathOf(".1709634030_227222")), "range");
}

TEST_F(RemoteFileCacheTest, StoresAnEmptyBody) {
  AnswerWithTag("\"e\"", "");
  EXPECT_EQ(ReadFileBytes(Get()), "");
}

TEST_F(RemoteFileCacheTest, ReplacesTheFormerCopy) {
  Plant(kDigest + std::string(".1_22612222"));
  Plant("another.1_22");
  AnswerWithTag("\"ab\"");
  EXPECT_EQ(Get(), PathOf(".1709634030_22616222"));
  EXPECT_THAT(Cached(),
              UnorderedElementsAre(kDigest + std::string(".1709634030_22616222"), "another.1_22"));
}

TEST_F(RemoteFileCacheTest, TellsUrlsApartThatDifferInCaseOnly) {
  AnswerWithTag("\"1\"");
  const std::string lower = Get("https://example.com/rules.zip");
  const std::string upper = Get("https://example.com/RULES.zip");
  EXPECT_NE(lower, upper);
  EXPECT_THAT(Cached(), SizeIs(2));
}

TEST_F(RemoteFileCacheTest, RevalidatesWithDateAndTag) {
  EXPECT_THAT(RevalidationOf(".1709634030_22616222"),
              ElementsAre(Pair("If-Modified-Since", kDate), Pair("If-None-Match", "\"ab\"")));
}

TEST_F(RemoteFileCacheTest, ServesTheCachedFileWhenNothingChanged) {
  AnswerWithTag("W/\"v 1\"");
  const std::string path = Get();
  AnswerWith(304);
  EXPECT_EQ(Get(), path);
  EXPECT_THAT(LastHeaders(),
              ElementsAre(Pair("If-Modified-Since", kDate), Pair("If-None-Match", "W/\"v 1\"")));
  EXPECT_EQ(ReadFileBytes(path), "new");
}

TEST_F(RemoteFileCacheTest, RevalidatesAnEntryWithoutATagByItsDateAlone) {
  ExpectWarning("Invalid Extension on Cache File (1709634030_)");
  EXPECT_THAT(RevalidationOf(".1709634030_"), ElementsAre(Pair("If-Modified-Since", kDate)));
}

TEST_F(RemoteFileCacheTest, RevalidatesAnEntryWithNeitherFromTheStartOf1970) {
  ExpectWarning("Invalid Extension on Cache File (0_)");
  EXPECT_THAT(RevalidationOf(".0_"),
              ElementsAre(Pair("If-Modified-Since", "Thu, 01 Jan 1970 00:00:00 GMT")));
}

TEST_F(RemoteFileCacheTest, TakesOneFileForOtherUnderscores) {
  EXPECT_THAT(RevalidationOf("._1709634030___2261_"),
              ElementsAre(Pair("If-Modified-Since", kDate), Pair("If-None-Match", "\"a")));
}

TEST_F(RemoteFileCacheTest, UsesTheFirstTwoOfTooManyValues) {
  ExpectWarning("Invalid Extension on Cache File (0_41_42)");
  EXPECT_THAT(RevalidationOf(".0_41_42"),
              ElementsAre(Pair("If-Modified-Since", "Thu, 01 Jan 1970 00:00:00 GMT"),
                          Pair("If-None-Match", "A")));
}

TEST_F(RemoteFileCacheTest, AsksPlainlyForAnEntryWithoutValues) {
  ExpectWarning("No Extension on Cache File (" + PathOf("") + ")");
  EXPECT_THAT(RevalidationOf(""), IsEmpty());
  ExpectWarning("Invalid Extension on Cache File ()");
  EXPECT_THAT(RevalidationOf("."), IsEmpty());
  ExpectWarning("Invalid Extension on Cache File (__)");
  EXPECT_THAT(RevalidationOf(".__"), IsEmpty());
}

TEST_F(RemoteFileCacheTest, ReadsAnyDateThatANameMayHold) {
  const std::pair<const char*, const char*> dates[] = {
      {".12abc_41", "Thu, 01 Jan 1970 00:00:12 GMT"},
      {".abc_41", "Thu, 01 Jan 1970 00:00:00 GMT"},
      {".inf_41", "Thu, 01 Jan 1970 00:00:00 GMT"},
      {".nan_41", "Thu, 01 Jan 1970 00:00:00 GMT"},
      {".-1_41", "Wed, 31 Dec 1969 23:59:59 GMT"},
      {".99999999999999999999999999_41", "Fri, 31 Dec 9999 23:59:59 GMT"},
      {".1e999_41", "Fri, 31 Dec 9999 23:59:59 GMT"},
      {".-1e999_41", "Mon, 01 Jan 0001 00:00:00 GMT"},
      {".1e-999_41", "Thu, 01 Jan 1970 00:00:00 GMT"},
      {".+12_41", "Thu, 01 Jan 1970 00:00:12 GMT"},
      {". \t\n12_41", "Thu, 01 Jan 1970 00:00:12 GMT"},
      {".+-12_41", "Thu, 01 Jan 1970 00:00:00 GMT"},
      {".+ 12_41", "Thu, 01 Jan 1970 00:00:00 GMT"},
      {". _41", "Thu, 01 Jan 1970 00:00:00 GMT"}};
  for (const auto& [name, date] : dates) {
    EXPECT_EQ(RevalidationOf(name).at("If-Modified-Since"), date) << name;
  }
}

// Hexadecimal pads the first byte only: the tag comes back as another one, and so the server sends
// the file again.
TEST_F(RemoteFileCacheTest, LosesATagWithAByteBelow16) {
  AnswerWithTag("\"\tDE\"");
  EXPECT_EQ(Get(), PathOf(".1709634030_229444522"));
  AnswerWith(304);
  Get();
  EXPECT_EQ(LastHeaders().at("If-None-Match"),
            "\"\x94"
            "DR");
}

// A server must not be able to stop its file from ever being asked for again.
TEST_F(RemoteFileCacheTest, LeavesATagOutThatNoHeaderCanCarry) {
  ExpectDebug(HasSubstr("No ETag can be had from the name of the cache file"));
  EXPECT_THAT(RevalidationOf(".0_2D0A582D"), ElementsAre(Pair("If-Modified-Since", testing::_)));
}

TEST_F(RemoteFileCacheTest, LeavesATagOutThatIsNoHexadecimal) {
  ExpectDebug(HasSubstr("No ETag can be had from the name of the cache file"));
  EXPECT_THAT(RevalidationOf(".0_zz"), ElementsAre(Pair("If-Modified-Since", testing::_)));
}

TEST_F(RemoteFileCacheTest, WarnsOfSeveralCopiesAndTakesTheFirstListed) {
  Plant(kDigest + std::string(".0_41"));
  Plant(kDigest + std::string(".0_42"));
  AnswerWith(304);
  ExpectWarning("Multiple copies of URL in cache!");
  ExpectWarning("Multiple copies of URL in cache!");
  const std::string first = CacheFolder() + "/" + Cached().front();
  EXPECT_EQ(Get(), first);
  EXPECT_EQ(TextOf(manager->GetFileFromCache(kUrl, "")), first);
}

TEST_F(RemoteFileCacheTest, DeletesEveryCopyBeforeItWrites) {
  Plant(kDigest + std::string(".0_41"));
  Plant(kDigest + std::string(".0_42"));
  ExpectWarning("Multiple copies of URL in cache!");
  AnswerWithTag("\"ab\"");
  EXPECT_EQ(Get(), PathOf(".1709634030_22616222"));
  EXPECT_THAT(Cached(), SizeIs(1));
}

TEST_F(RemoteFileCacheTest, FallsBackOnTheCachedFileForOtherStatuses) {
  const std::string path = Plant(kDigest + std::string(".0_41"));
  for (const std::int32_t status : {204, 206, 304, 403, 500, 503}) {
    AnswerWith(status, "not this");
    EXPECT_EQ(Get(), path) << status;
  }
  EXPECT_EQ(ReadFileBytes(path), "cached");
}

TEST_F(RemoteFileCacheTest, GivesTheStatusAsAnErrorWithoutACachedFile) {
  for (const std::int32_t status : {204, 206, 304, 403, 500, 503}) {
    AnswerWith(status, "not this");
    EXPECT_EQ(Get(), "remotefilemanager.request_failed: " + std::to_string(status));
  }
  EXPECT_THAT(Cached(), IsEmpty());
}

TEST_F(RemoteFileCacheTest, GivesA404AsAnErrorEvenWithACachedFile) {
  AnswerWith(404);
  EXPECT_EQ(Get(), "remotefilemanager.request_failed: 404");
  const std::string path = Plant(kDigest + std::string(".0_41"));
  EXPECT_EQ(Get(), "remotefilemanager.request_failed: 404");
  EXPECT_TRUE(fs::exists(path));
}

TEST_F(RemoteFileCacheTest, GivesAnErrorWithoutAConnection) {
  const Velmora::RemoteFileCache cache(CacheFolder(), "/");
  const FileResult result = cache.Process(nullptr, kUrl, "", "/cached");
  EXPECT_EQ(TextOf(result), "std.logic_error.invalid_argument: Invalid connection interface");
  EXPECT_EQ(result.GetError().GetDebugInfo().GetSourceLocation(),
            "src/services/network/NativeRemoteFileManagerService");
}

// Kept as designed: the former copy has gone before the new one fails.
TEST_F(RemoteFileCacheTest, NamesAFileThatIsGoneWhenTheWriteFails) {
  const std::string path = Plant(kDigest + std::string(".0_41"));
  host.fileManager->Fail(FileFault::WriteFile, Platform::Error("test", 28, "The disk is full."));
  AnswerWithTag("\"ab\"");
  ExpectError("Unable to write file to cache (The disk is full.)");
  EXPECT_EQ(Get(), path);
  EXPECT_FALSE(fs::exists(path));
  EXPECT_THAT(Cached(), IsEmpty());
  ExpectError("Unable to write file to cache (The disk is full.)");
  EXPECT_EQ(Get(), "");
}

TEST_F(RemoteFileCacheTest, CannotStoreAFileWhoseTagMakesTheNameTooLong) {
  AnswerWithTag("\"" + std::string(200, 't') + "\"");
  ExpectError(HasSubstr("Unable to write file to cache (Cannot write the file"));
  EXPECT_EQ(Get(), "");
}

TEST_F(RemoteFileCacheTest, GoesOnWhenACopyCannotBeDeleted) {
  const std::string path = Plant(kDigest + std::string(".0_41"));
  host.fileManager->Fail(FileFault::RemoveItem, Platform::Error("test", 1, "It is held."));
  AnswerWithTag("\"ab\"");
  ExpectWarning("Unable to delete " + path + " (It is held.)");
  EXPECT_EQ(Get(), PathOf(".1709634030_22616222"));
  EXPECT_THAT(Cached(), SizeIs(2));
}

TEST_F(RemoteFileCacheTest, StoresNothingWhereTheFolderIsAFile) {
  fs::create_directories(systemInfo->GetApplicationCacheDir());
  ASSERT_TRUE(host.fileManager->WriteFile(CacheFolder(), "a file", nullptr));
  AnswerWithTag("\"ab\"");
  ExpectError("Unable to create directory, it's a file!");
  EXPECT_EQ(Get(), "");
  EXPECT_EQ(ReadFileBytes(CacheFolder()), "a file");
}

TEST_F(RemoteFileCacheTest, StoresNothingWhereTheSubFolderIsAFile) {
  Plant("rules", "a file");
  AnswerWithTag("\"ab\"");
  ExpectError("Unable to create directory, it's a file!");
  EXPECT_EQ(Get(kUrl, "rules"), "");
}

TEST_F(RemoteFileCacheTest, StoresNothingWhereTheFolderCannotBeMade) {
  systemInfo->GetApplicationCacheDir();
  host.fileManager->Fail(FileFault::CreateDirectory, Platform::Error("test", 1, "Read-only."));
  AnswerWithTag("\"ab\"");
  ExpectError("Unable to create directory (Read-only.)");
  EXPECT_EQ(Get(), "");
}

// Leftovers of a process that was killed half-way through a write.
TEST_F(RemoteFileCacheTest, NeverTakesADraftForACachedFile) {
  Plant(".qexcore-draft-abcdef", "half a bo");
  EXPECT_EQ(TextOf(manager->GetFileFromCache(kUrl, "")),
            "remotefilemanager.cache_failed: URL not cached");
}

TEST_F(RemoteFileCacheTest, FindsWhatIsCachedWithoutTheNetwork) {
  const std::string path = Plant(kDigest + std::string(".0_41"), "cached", "rules");
  EXPECT_EQ(TextOf(manager->GetFileFromCache(kUrl, "rules")), path);
  EXPECT_EQ(TextOf(manager->GetFileFromCache("no url at all", "rules")),
            "remotefilemanager.cache_failed: URL not cached");
  EXPECT_THAT(host.urlSession->Requests(), IsEmpty());
}

TEST_F(RemoteFileCacheTest, DeletesAllButTheListed) {
  const std::string kept = kDigest + std::string(".0_41");
  Plant(kept, "", "rules");
  Plant("foreign.txt", "", "rules");
  Plant("no extension", "", "rules");
  Plant(std::string(kDigest) + "x.0_41", "", "rules");
  manager->DeleteCachedDataNotInList("rules", {"https://example.com/other", kUrl});
  EXPECT_THAT(Cached("rules"), ElementsAre(kept));
  manager->DeleteCachedDataNotInList("rules", {});
  EXPECT_THAT(Cached("rules"), IsEmpty());
}

TEST_F(RemoteFileCacheTest, DeletesNothingWhereThereIsNothing) {
  ExpectDebug("Nothing to be removed in cache folder " + CacheFolder("rules"));
  manager->DeleteCachedDataNotInList("rules", {});
  fs::create_directories(CacheFolder());
  ExpectDebug("Nothing to be removed in cache folder " + CacheFolder());
  manager->DeleteCachedDataNotInList("", {kUrl});
}

TEST_F(RemoteFileCacheTest, SaysWhatItCannotDelete) {
  const std::string path = Plant("foreign.txt");
  host.fileManager->Fail(FileFault::RemoveItem, Platform::Error("test", 1, "It is held."));
  ExpectDebug("Unable to delete " + path + " (It is held.)");
  manager->DeleteCachedDataNotInList("", {});
}

// A body of a size that is only claimed.
class ClaimedBody final : public Velmora::Object,
                          public virtual Velmora::HttpConnectionInterface,
                          public virtual Velmora::HttpConnectionDataInterface {
 public:
  explicit ClaimedBody(std::uint64_t size) : size_(size) {}

  std::string GetResponse() override { return {}; }
  std::shared_ptr<Velmora::HttpConnectionDataInterface> GetResponseRawData() override {
    return std::make_shared<ClaimedBody>(size_);
  }
  std::int32_t GetResponseCode() override { return 200; }
  std::string GetResponseMessage() override { return {}; }
  std::string GetResponsePropertyValue(const std::string&) override { return "1"; }
  void Close() override {}
  std::uint64_t GetData(std::uint64_t maximum, std::uint8_t* buffer) override {
    std::fill_n(buffer, maximum, 'c');
    return maximum;
  }
  std::uint64_t GetSize() override { return size_; }

 private:
  const std::uint64_t size_;
};

TEST_F(RemoteFileCacheTest, CutsTheLengthToASigned32BitNumber) {
  const Velmora::RemoteFileCache cache(CacheFolder(), "/");
  ExpectWarning("Data size > standard int");
  const auto connection = std::make_shared<ClaimedBody>((std::uint64_t{1} << 32) + 5);
  const FileResult result = cache.Process(connection, kUrl, "", std::nullopt);
  EXPECT_EQ(ReadFileBytes(TextOf(result)), "ccccc");
}

TEST_F(RemoteFileCacheTest, WritesNothingOfALengthBelowZero) {
  const Velmora::RemoteFileCache cache(CacheFolder(), "/");
  ExpectWarning("Data size > standard int");
  ExpectError(StartsWith("Unable to write file to cache ("));
  const auto connection = std::make_shared<ClaimedBody>(std::uint64_t{1} << 31);
  EXPECT_EQ(TextOf(cache.Process(connection, kUrl, "", "/former")), "/former");
}

}  // namespace
