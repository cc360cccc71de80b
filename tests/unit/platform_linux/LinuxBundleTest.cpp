#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "platform/linux/LinuxBundle.h"
#include "platform/linux/PropertyList.h"
#include "support/TemporaryDirectory.h"

namespace {

namespace fs = std::filesystem;

using Platform::LinuxBundle;
using Platform::Value;
using TestSupport::TemporaryDirectory;

std::string InfoOf(const std::string& name) {
  return "<plist version=\"1.0\"><dict><key>CFBundleName</key><string>" + name +
         "</string></dict></plist>";
}

Value NameOf(const LinuxBundle& bundle) {
  return bundle.ObjectForInfoDictionaryKey("CFBundleName");
}

TEST(LinuxBundle, FindsItsFilesBesideTheProgram) {
  const TemporaryDirectory folder;
  folder.WriteFile("bin/Info.plist", InfoOf("Beside"));
  folder.WriteFile("bin/rules.json", "{}");
  const LinuxBundle bundle(folder.PathOf("bin/shop"));
  EXPECT_EQ(NameOf(bundle), Value("Beside"));
  EXPECT_EQ(bundle.BundlePath(), folder.PathOf("bin"));
  EXPECT_EQ(bundle.ExecutablePath(), folder.PathOf("bin/shop"));
  EXPECT_EQ(bundle.PathForResource("rules.json"), folder.PathOf("bin/rules.json"));
}

TEST(LinuxBundle, FindsItsFilesInTheSharedFolderOfThePrefix) {
  const TemporaryDirectory folder;
  folder.WriteFile("bin/other", "");
  folder.WriteFile("share/shop/Info.plist", InfoOf("Shared"));
  folder.WriteFile("share/shop/help/index.html", "<html></html>");
  const LinuxBundle bundle(folder.PathOf("bin/shop"));
  EXPECT_EQ(NameOf(bundle), Value("Shared"));
  EXPECT_EQ(bundle.BundlePath(), folder.PathOf("share/shop"));
  EXPECT_EQ(bundle.PathForResource("help/index.html"), folder.PathOf("share/shop/help/index.html"));
  EXPECT_EQ(bundle.PathForResource("other"), "");
}

TEST(LinuxBundle, PrefersTheFolderOfTheProgram) {
  const TemporaryDirectory folder;
  folder.WriteFile("bin/Info.plist", InfoOf("Beside"));
  folder.WriteFile("share/shop/Info.plist", InfoOf("Shared"));
  EXPECT_EQ(NameOf(LinuxBundle(folder.PathOf("bin/shop"))), Value("Beside"));
}

TEST(LinuxBundle, TakesASharedFolderWithoutAnInfoFile) {
  const TemporaryDirectory folder;
  folder.WriteFile("share/shop/rules.json", "{}");
  const LinuxBundle bundle(folder.PathOf("bin/shop"));
  EXPECT_TRUE(NameOf(bundle).IsAbsent());
  EXPECT_EQ(bundle.PathForResource("rules.json"), folder.PathOf("share/shop/rules.json"));
}

TEST(LinuxBundle, KnowsNothingWithoutAProgram) {
  const LinuxBundle bundle("");
  EXPECT_EQ(bundle.BundlePath(), "");
  EXPECT_EQ(bundle.ExecutablePath(), "");
  EXPECT_TRUE(NameOf(bundle).IsAbsent());
  EXPECT_EQ(bundle.PathForResource("etc/passwd"), "");
}

TEST(LinuxBundle, IsTheRunningProgramsUnlessToldOtherwise) {
  const LinuxBundle bundle;
  EXPECT_EQ(bundle.ExecutablePath(), fs::canonical("/proc/self/exe").string());
  EXPECT_EQ(bundle.PathForResource(fs::path(bundle.ExecutablePath()).filename()),
            bundle.ExecutablePath());
}

TEST(LinuxBundle, ReadsTheInfoFileOnceAndNeverAgain) {
  const TemporaryDirectory folder;
  folder.WriteFile("Info.plist", InfoOf("First"));
  const LinuxBundle bundle(folder.PathOf("shop"), folder.Path());
  EXPECT_EQ(NameOf(bundle), Value("First"));
  folder.WriteFile("Info.plist", InfoOf("Second"));
  EXPECT_EQ(NameOf(bundle), Value("First"));
}

TEST(LinuxBundle, ReadsTheInfoFileWhenItIsFirstAskedFor) {
  const TemporaryDirectory folder;
  const LinuxBundle bundle(folder.PathOf("shop"), folder.Path());
  folder.WriteFile("Info.plist", InfoOf("Late"));
  EXPECT_EQ(NameOf(bundle), Value("Late"));
}

TEST(LinuxBundle, ServesSeveralThreadsAtOnce) {
  const TemporaryDirectory folder;
  folder.WriteFile("Info.plist", InfoOf("Shop"));
  const LinuxBundle bundle(folder.PathOf("shop"), folder.Path());
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&bundle] {
      for (int j = 0; j < 100; ++j) EXPECT_EQ(NameOf(bundle), Value("Shop"));
    });
  }
  for (std::thread& thread : threads) thread.join();
}

TEST(LinuxBundle, TreatsAnUnusableInfoFileAsMissing) {
  const std::vector<std::string> unusable = {
      "",
      "no list",
      "<plist><string>x</string></plist>",
      "<plist><array><string>CFBundleName</string></array></plist>",
      "bplist00",
      "bplist00" + std::string(100, '\xFF'),
      InfoOf(std::string(Platform::kMaximumPropertyListSize, 'x')),
  };
  for (const std::string& contents : unusable) {
    const TemporaryDirectory folder;
    folder.WriteFile("Info.plist", contents);
    const LinuxBundle bundle(folder.PathOf("shop"), folder.Path());
    EXPECT_TRUE(NameOf(bundle).IsAbsent()) << contents.substr(0, 60);
  }
}

TEST(LinuxBundle, TreatsAFolderInThePlaceOfTheInfoFileAsMissing) {
  const TemporaryDirectory folder;
  folder.WriteFile("Info.plist/file", "");
  const LinuxBundle bundle(folder.PathOf("shop"), folder.Path());
  EXPECT_TRUE(NameOf(bundle).IsAbsent());
}

TEST(LinuxBundle, FindsFilesOnly) {
  const TemporaryDirectory folder;
  folder.WriteFile("help/index.html", "");
  const LinuxBundle bundle(folder.PathOf("shop"), folder.Path());
  EXPECT_EQ(bundle.PathForResource("help"), "");
  EXPECT_EQ(bundle.PathForResource("help/"), "");
  EXPECT_EQ(bundle.PathForResource("help//index.html"), "");
}

TEST(LinuxBundle, FollowsLinksThatStayInside) {
  const TemporaryDirectory folder;
  folder.WriteFile("bundle/rules.json", "{}");
  fs::create_symlink("rules.json", folder.PathOf("bundle/link"));
  const LinuxBundle bundle(folder.PathOf("shop"), folder.PathOf("bundle"));
  EXPECT_EQ(bundle.PathForResource("link"), folder.PathOf("bundle/link"));
}

TEST(LinuxBundle, FollowsNoLinkThatLeadsOutside) {
  const TemporaryDirectory folder;
  folder.WriteFile("bundle/rules.json", "{}");
  folder.WriteFile("secret/file", "secret");
  folder.WriteFile("bundle2/file", "secret");
  fs::create_symlink("../secret/file", folder.PathOf("bundle/file"));
  fs::create_symlink("../secret", folder.PathOf("bundle/folder"));
  fs::create_symlink("../bundle2/file", folder.PathOf("bundle/neighbour"));
  fs::create_symlink("loop", folder.PathOf("bundle/loop"));
  const LinuxBundle bundle(folder.PathOf("shop"), folder.PathOf("bundle"));
  for (const char* name : {"file", "folder/file", "neighbour", "loop"}) {
    EXPECT_EQ(bundle.PathForResource(name), "") << name;
  }
}

TEST(LinuxBundle, FindsResourcesInAFolderThatIsItselfALink) {
  const TemporaryDirectory folder;
  folder.WriteFile("real/rules.json", "{}");
  fs::create_symlink("real", folder.PathOf("bundle"));
  const LinuxBundle bundle(folder.PathOf("shop"), folder.PathOf("bundle"));
  EXPECT_EQ(bundle.PathForResource("rules.json"), folder.PathOf("bundle/rules.json"));
}

}  // namespace
