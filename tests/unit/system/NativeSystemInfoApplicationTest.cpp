// What NativeSystemInfoService tells about the application: its bundle and its directories.

#include <filesystem>
#include <optional>
#include <string>

#include <gmock/gmock.h>

#include "SystemInfoFixture.h"
#include "interop/AppInfo.h"
#include "support/TemporaryDirectory.h"

namespace {

using Platform::Value;
using TestSupport::FileFault;
using TestSupport::LogLevel;
using TestSupport::TemporaryDirectory;
using Velmora::AppInfo;

namespace fs = std::filesystem;

class NativeSystemInfoApplication : public SystemInfoFixture {
 protected:
  ~NativeSystemInfoApplication() override { AppInfo::SetAppGroup(std::nullopt); }
};

TEST_F(NativeSystemInfoApplication, GivesTheBundlePathAsBaseDirectory) {
  host.bundle->SetBundlePath("/applications/Shop.app");
  EXPECT_EQ(service->GetApplicationBaseDir(), "/applications/Shop.app");
}

TEST_F(NativeSystemInfoApplication, GivesAnEmptyBaseDirectoryWhenTheBundleCannotTell) {
  host.bundle->SetBundlePath("");
  EXPECT_EQ(service->GetApplicationBaseDir(), "");
}

TEST_F(NativeSystemInfoApplication, MakesTheCachesDirectoryWithItsParents) {
  const TemporaryDirectory folder;
  const std::string caches = folder.PathOf("a/b/Caches");
  host.fileManager->SetCachesDirectory(caches);
  EXPECT_EQ(service->GetApplicationCacheDir(), caches);
  EXPECT_TRUE(fs::is_directory(caches));
}

TEST_F(NativeSystemInfoApplication, LeavesAnExistingCachesDirectoryAlone) {
  const TemporaryDirectory folder;
  folder.WriteFile("Caches/kept", "kept");
  host.fileManager->SetCachesDirectory(folder.PathOf("Caches"));
  host.fileManager->Fail(FileFault::CreateDirectory);
  EXPECT_EQ(service->GetApplicationCacheDir(), folder.PathOf("Caches"));
  EXPECT_EQ(TestSupport::ReadFileBytes(folder.PathOf("Caches/kept")), "kept");
}

TEST_F(NativeSystemInfoApplication, LeavesAFileInThePlaceOfTheCachesDirectoryAlone) {
  const TemporaryDirectory folder;
  const std::string path = folder.WriteFile("Caches", "a file");
  host.fileManager->SetCachesDirectory(path);
  EXPECT_EQ(service->GetApplicationCacheDir(), path);
  EXPECT_EQ(TestSupport::ReadFileBytes(path), "a file");
}

TEST_F(NativeSystemInfoApplication, GivesTheCachesDirectoryEvenWhenItCannotBeMade) {
  const TemporaryDirectory folder;
  host.fileManager->SetCachesDirectory(folder.PathOf("Caches"));
  host.fileManager->Fail(FileFault::CreateDirectory);
  EXPECT_EQ(service->GetApplicationCacheDir(), folder.PathOf("Caches"));
  EXPECT_FALSE(fs::exists(folder.PathOf("Caches")));
}

TEST_F(NativeSystemInfoApplication, GivesNoCacheDirectoryWhereThePlatformNamesNone) {
  host.fileManager->SetCachesDirectory("");
  EXPECT_EQ(service->GetApplicationCacheDir(), "");
}

TEST_F(NativeSystemInfoApplication, UsesTheContainerOfTheApplicationGroupItself) {
  const TemporaryDirectory folder;
  host.fileManager->SetGroupContainerDirectory("group.shop", folder.PathOf("container"));
  AppInfo::SetAppGroup("group.shop");
  EXPECT_EQ(service->GetApplicationCacheDir(), folder.PathOf("container"));
  EXPECT_TRUE(fs::is_directory(folder.PathOf("container")));
}

TEST_F(NativeSystemInfoApplication, UsesTheCachesDirectoryForAGroupWithoutAContainer) {
  const TemporaryDirectory folder;
  host.fileManager->SetGroupContainerDirectory("group.shop", "");
  host.fileManager->SetCachesDirectory(folder.PathOf("Caches"));
  AppInfo::SetAppGroup("group.shop");
  EXPECT_EQ(service->GetApplicationCacheDir(), folder.PathOf("Caches"));
}

TEST_F(NativeSystemInfoApplication, ReadsAnAsset) {
  host.bundle->AddResource("rules.json", "{\"text\": \"\u00e4\"}");
  EXPECT_EQ(service->GetAsset("rules.json"), "{\"text\": \"\u00e4\"}");
}

TEST_F(NativeSystemInfoApplication, GivesAnEmptyAssetWithoutALogLineForAnEmptyFile) {
  host.bundle->AddResource("empty", "");
  EXPECT_EQ(service->GetAsset("empty"), "");
}

TEST_F(NativeSystemInfoApplication, ReadsAnAssetUpToItsFirstZeroByte) {
  host.bundle->AddResource("binary", std::string("text\0more", 9));
  EXPECT_EQ(service->GetAsset("binary"), "text");
}

TEST_F(NativeSystemInfoApplication, ReadsAnAssetOfTenMegabytes) {
  const std::string contents(10'000'000, 'a');
  host.bundle->AddResource("large", contents);
  EXPECT_EQ(service->GetAsset("large"), contents);
}

TEST_F(NativeSystemInfoApplication, LogsOneDebugLineForAnEmptyAssetName) {
  log.ExpectLine(LogLevel::Debug, kTag, "Failed to get asset (file name was empty)");
  EXPECT_EQ(service->GetAsset(""), "");
}

TEST_F(NativeSystemInfoApplication, WarnsWithAnEmptyPathOfAnAssetThatIsNotThere) {
  log.ExpectLine(LogLevel::Warning, kTag,
                 testing::StartsWith("Call to GetAsset failed to read file '': "));
  EXPECT_EQ(service->GetAsset("missing.json"), "");
}

TEST_F(NativeSystemInfoApplication, WarnsWithAnEmptyPathOfANameThatIsNoUtf8) {
  host.bundle->AddResource("\xFF", "contents");
  log.ExpectLine(LogLevel::Warning, kTag,
                 testing::StartsWith("Call to GetAsset failed to read file '': "));
  EXPECT_EQ(service->GetAsset("\xFF"), "");
}

TEST_F(NativeSystemInfoApplication, WarnsOfAnAssetThatIsNoUtf8) {
  const std::string path = host.bundle->AddResource("latin", "\xE4");
  log.ExpectLine(LogLevel::Warning, kTag,
                 testing::StartsWith("Call to GetAsset failed to read file '" + path + "': "));
  EXPECT_EQ(service->GetAsset("latin"), "");
}

TEST_F(NativeSystemInfoApplication, WarnsWithPathAndReasonOfAnAssetThatCannotBeRead) {
  const std::string path = host.bundle->AddResource("rules.json", "{}");
  host.fileManager->Fail(FileFault::ReadText, Platform::Error("test", 5, "The disk is %s."));
  log.ExpectLine(LogLevel::Warning, kTag,
                 "Call to GetAsset failed to read file '" + path + "': The disk is %s.");
  EXPECT_EQ(service->GetAsset("rules.json"), "");
}

TEST_F(NativeSystemInfoApplication, GivesTextPropertiesOnly) {
  host.bundle->SetInfo("Text", "a value");
  host.bundle->SetInfo("Number", 7);
  host.bundle->SetInfo("List", Value::Array({"a", "b"}));
  EXPECT_EQ(service->GetProperty("Text"), "a value");
  EXPECT_EQ(service->GetProperty("Number"), "");
  EXPECT_EQ(service->GetProperty("List"), "");
  EXPECT_EQ(service->GetProperty("Missing"), "");
  EXPECT_EQ(service->GetProperty(""), "");
}

TEST_F(NativeSystemInfoApplication, GivesBuildNumberAndMarketingVersion) {
  host.bundle->SetInfo("CFBundleVersion", "4711");
  host.bundle->SetInfo("CFBundleShortVersionString", "2.5");
  EXPECT_EQ(service->GetApplicationVersion(), "4711");
  EXPECT_EQ(service->GetApplicationVersionCode(), "2.5");
}

TEST_F(NativeSystemInfoApplication, GivesNoVersionsWhereTheBundleHasNone) {
  EXPECT_EQ(service->GetApplicationVersion(), "");
  EXPECT_EQ(service->GetApplicationVersionCode(), "");
}

TEST_F(NativeSystemInfoApplication, PrefersTheBundleName) {
  host.bundle->SetInfo("CFBundleName", "Shop");
  host.bundle->SetInfo("CFBundleDisplayName", "The Shop");
  EXPECT_EQ(service->GetApplicationName(), "Shop");
}

TEST_F(NativeSystemInfoApplication, TakesTheDisplayNameWithoutALogLineWhenTheNameIsEmpty) {
  host.bundle->SetInfo("CFBundleName", "");
  host.bundle->SetInfo("CFBundleDisplayName", "The Shop");
  EXPECT_EQ(service->GetApplicationName(), "The Shop");
}

TEST_F(NativeSystemInfoApplication, LogsOneErrorLineWhenItHasNoName) {
  log.ExpectLine(LogLevel::Error, kTag,
                 "Failed to get application name (CFBundleName, CFBundleDisplayName are nil)");
  EXPECT_EQ(service->GetApplicationName(), "");
}

TEST_F(NativeSystemInfoApplication, SurvivesABundleThatFails) {
  FailEveryPort();
  log.ExpectLine(LogLevel::Error, kTag,
                 "Failed to get application name (CFBundleName, CFBundleDisplayName are nil)");
  log.ExpectLine(LogLevel::Warning, kTag, "Call to GetAsset failed to read file '': ");
  EXPECT_EQ(service->GetApplicationBaseDir(), "");
  EXPECT_EQ(service->GetApplicationName(), "");
  EXPECT_EQ(service->GetApplicationVersion(), "");
  EXPECT_EQ(service->GetAsset("rules.json"), "");
  EXPECT_EQ(service->GetProperty("Text"), "");
}

}  // namespace
