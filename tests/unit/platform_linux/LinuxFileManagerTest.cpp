#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <functional>
#include <thread>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/linux/LinuxFileManager.h"
#include "support/ForkedProcess.h"
#include "support/RefusedSystemCalls.h"
#include "support/ScopedEnvironment.h"
#include "support/TemporaryDirectory.h"
#include "support/WaitUntil.h"

namespace {

namespace fs = std::filesystem;

using Platform::Error;
using Platform::LinuxFileManager;
using testing::HasSubstr;
using TestSupport::AsStranger;
using TestSupport::ScopedEnvironment;
using TestSupport::TemporaryDirectory;

TEST(LinuxFileManager, PutsCachesIntoAFolderOfTheProgram) {
  const ScopedEnvironment home("HOME", "/home/someone");
  const ScopedEnvironment caches("XDG_CACHE_HOME", std::nullopt);
  EXPECT_EQ(LinuxFileManager().CachesDirectory(), "/home/someone/.cache/platform_linux_unit");
}

TEST(LinuxFileManager, PrefersTheCacheDirectoryOfTheEnvironment) {
  const ScopedEnvironment home("HOME", "/home/someone");
  const ScopedEnvironment caches("XDG_CACHE_HOME", "/caches");
  EXPECT_EQ(LinuxFileManager().CachesDirectory(), "/caches/platform_linux_unit");
}

TEST(LinuxFileManager, IgnoresRelativeDirectoriesOfTheEnvironment) {
  const ScopedEnvironment home("HOME", "/home/someone");
  const ScopedEnvironment caches("XDG_CACHE_HOME", "caches");
  const ScopedEnvironment data("XDG_DATA_HOME", "data");
  EXPECT_EQ(LinuxFileManager().CachesDirectory(), "/home/someone/.cache/platform_linux_unit");
  EXPECT_EQ(LinuxFileManager().GroupContainerDirectory("g"),
            "/home/someone/.local/share/group-containers/g");
}

TEST(LinuxFileManager, NamesNoDirectoriesForAUserWithoutAHome) {
  for (const std::optional<std::string>& value :
       {std::optional<std::string>(), std::optional<std::string>(""),
        std::optional<std::string>("somewhere")}) {
    const ScopedEnvironment home("HOME", value);
    const ScopedEnvironment caches("XDG_CACHE_HOME", value);
    const ScopedEnvironment data("XDG_DATA_HOME", value);
    EXPECT_EQ(LinuxFileManager().CachesDirectory(), "");
    EXPECT_EQ(LinuxFileManager().GroupContainerDirectory("group"), "");
  }
}

TEST(LinuxFileManager, CreatesNeitherCachesNorContainers) {
  const TemporaryDirectory folder;
  const ScopedEnvironment caches("XDG_CACHE_HOME", folder.Path());
  const ScopedEnvironment data("XDG_DATA_HOME", folder.Path());
  EXPECT_EQ(LinuxFileManager().GroupContainerDirectory("group.com.example"),
            folder.PathOf("group-containers/group.com.example"));
  EXPECT_NE(LinuxFileManager().CachesDirectory(), "");
  EXPECT_TRUE(fs::is_empty(folder.Path()));
}

TEST(LinuxFileManager, HasNoContainerForANameThatIsNoFileName) {
  const ScopedEnvironment data("XDG_DATA_HOME", "/data");
  EXPECT_EQ(LinuxFileManager().GroupContainerDirectory(std::string("a\0b", 3)), "");
  EXPECT_EQ(LinuxFileManager().GroupContainerDirectory(std::string(256, 'g')), "");
  EXPECT_NE(LinuxFileManager().GroupContainerDirectory(std::string(255, 'g')), "");
  EXPECT_EQ(LinuxFileManager().GroupContainerDirectory(std::string(10'000'000, 'g')), "");
}

TEST(LinuxFileManager, NamesNoCurrentDirectoryOnceThatIsGone) {
  const fs::path former = fs::current_path();
  {
    const TemporaryDirectory folder;
    fs::current_path(folder.Path());
  }
  EXPECT_EQ(LinuxFileManager().CurrentDirectoryPath(), "");
  Error error;
  EXPECT_FALSE(LinuxFileManager().CreateDirectory("below", &error));
  EXPECT_THAT(error.LocalizedDescription(), HasSubstr("\"below\": No such file or directory."));
  fs::current_path(former);
}

TEST(LinuxFileManager, RemovesTreesDeeperThanAPathCanName) {
  const TemporaryDirectory folder;
  const fs::path former = fs::current_path();
  fs::current_path(folder.Path());
  ASSERT_EQ(::mkdir("tree", 0700), 0);
  fs::current_path("tree");
  for (int level = 0; level < 500; ++level) {
    const std::string name(20, 'd');
    ASSERT_EQ(::mkdir(name.c_str(), 0700), 0);
    ASSERT_EQ(::chdir(name.c_str()), 0);
  }
  fs::current_path(former);
  Error error;
  EXPECT_TRUE(LinuxFileManager().RemoveItem(folder.PathOf("tree"), &error))
      << error.LocalizedDescription();
  EXPECT_TRUE(fs::is_empty(folder.Path()));
}

class LinuxFileManagerWithoutPermission : public testing::Test {
 protected:
  // A folder and a file in it that only the superuser may write, and a file that only they may
  // read.
  LinuxFileManagerWithoutPermission() {
    readable_ = folder_.WriteFile("locked/readable", "x");
    secret_ = folder_.WriteFile("locked/secret", "x");
    ::chmod(readable_.c_str(), 0444);
    ::chmod(secret_.c_str(), 0);
    ::chmod(folder_.Path().c_str(), 0755);
    ::chmod(folder_.PathOf("locked").c_str(), 0555);
  }
  ~LinuxFileManagerWithoutPermission() override { ::chmod(folder_.PathOf("locked").c_str(), 0755); }

  TemporaryDirectory folder_;
  std::string readable_;
  std::string secret_;
};

TEST_F(LinuxFileManagerWithoutPermission, CanWriteNothing) {
  EXPECT_FALSE(AsStranger([&] { return LinuxFileManager().IsWritable(folder_.PathOf("locked")); }));
  EXPECT_FALSE(AsStranger([&] { return LinuxFileManager().IsWritable(readable_); }));
  for (const std::string& path : {readable_, folder_.PathOf("locked/new")}) {
    EXPECT_TRUE(AsStranger([&] { return LinuxFileManager().OpenForWriting(path, "") == nullptr; }));
  }
}

TEST_F(LinuxFileManagerWithoutPermission, ReadsOnlyWhatItMay) {
  EXPECT_TRUE(AsStranger([&] { return LinuxFileManager().ReadText(readable_, nullptr) == "x"; }));
  EXPECT_TRUE(AsStranger([&] { return LinuxFileManager().OpenForReading(readable_) != nullptr; }));
  EXPECT_FALSE(AsStranger([&] { return LinuxFileManager().OpenForReading(secret_) != nullptr; }));
}

TEST_F(LinuxFileManagerWithoutPermission, SaysThatPermissionIsMissing) {
  const std::string below = folder_.PathOf("locked/new");
  const auto isDenied = [](const Error& error, const std::string& path) {
    return error.Code() == EACCES &&
           error.LocalizedDescription().ends_with("\"" + path + "\": Permission denied.");
  };
  EXPECT_TRUE(AsStranger([&] {
    Error error;
    return !LinuxFileManager().CreateDirectory(below, &error) && isDenied(error, below);
  }));
  EXPECT_TRUE(AsStranger([&] {
    Error error;
    return !LinuxFileManager().RemoveItem(readable_, &error) && isDenied(error, readable_);
  }));
  EXPECT_TRUE(AsStranger([&] {
    Error error;
    return !LinuxFileManager().ReadText(secret_, &error) && isDenied(error, secret_);
  }));
}

// The flags of the descriptors that this process has open below `folder` just now, if any.
std::vector<unsigned long> FlagsOfDescriptorsBelow(const std::string& folder) {
  std::vector<unsigned long> found;
  for (const auto& entry : fs::directory_iterator("/proc/self/fd")) {
    std::error_code error;
    if (!fs::read_symlink(entry.path(), error).string().starts_with(folder)) continue;
    std::ifstream info("/proc/self/fdinfo/" + entry.path().filename().string());
    for (std::string word; info >> word;) {
      if (word == "flags:" && info >> word) found.push_back(std::stoul(word, nullptr, 8));
    }
  }
  return found;
}

TEST(LinuxFileManager, HidesWhatItOpensForOneOperationFromChildProcesses) {
  const TemporaryDirectory folder;
  const std::string path = folder.WriteFile("file", std::string(1'000'000, 'x'));
  for (int i = 0; i < 500; ++i) folder.WriteFile("many/" + std::to_string(i), "");
  LinuxFileManager manager;
  const std::vector<std::pair<const char*, std::function<void()>>> operations = {
      {"list", [&] { manager.ContentsOfDirectory(folder.PathOf("many"), nullptr); }},
      {"read", [&] { manager.ReadText(path, nullptr); }},
      {"create", [&] { manager.OpenForWriting(folder.PathOf("new"), ""); }},
      {"write", [&] { manager.WriteFile(folder.PathOf("written"), "contents", nullptr); }}};
  for (const auto& [name, work] : operations) {
    const auto& operation = work;  // clang 14 lets no lambda have the binding itself
    std::vector<unsigned long> flags;
    {
      const std::jthread worker([&operation](const std::stop_token& stop) {
        while (!stop.stop_requested()) operation();
      });
      EXPECT_TRUE(TestSupport::WaitUntil([&] {
        for (const unsigned long flag : FlagsOfDescriptorsBelow(folder.Path())) {
          flags.push_back(flag);
        }
        return flags.size() >= 10;
      })) << name;
    }
    for (const unsigned long flag : flags) EXPECT_NE(flag & O_CLOEXEC, 0U) << name;
  }
}

TEST(LinuxFileManager, WritesWhereAFileWithoutANameCannotBeGivenOne) {
  const TestSupport::TemporaryDirectory folder;
  ::chmod(folder.Path().c_str(), 0777);
  const std::string path = folder.PathOf("file");
  EXPECT_TRUE(AsStranger([&] {
    return TestSupport::RefuseSystemCalls({SYS_linkat}, EPERM) &&
           LinuxFileManager().WriteFile(path, "first", nullptr) &&
           LinuxFileManager().WriteFile(path, "second", nullptr);
  }));
  EXPECT_EQ(TestSupport::ReadFileBytes(path), "second");
  EXPECT_EQ(LinuxFileManager().ContentsOfDirectory(folder.Path(), nullptr).size(), 1U);
}

TEST(LinuxFileManager, WritesIntoAFolderThatIsTidiedUpAllTheTime) {
  const TestSupport::TemporaryDirectory folder;
  const std::string path = folder.PathOf("file");
  std::atomic<bool> isWriting{true};
  std::thread tidier([&] {
    LinuxFileManager manager;
    while (isWriting) {
      for (const auto& entry : manager.ContentsOfDirectory(folder.Path(), nullptr)) {
        if (entry.name != "file") manager.RemoveItem(folder.PathOf(entry.name), nullptr);
      }
    }
  });
  for (int i = 0; i < 100; ++i) {
    const std::string bytes(100'000, static_cast<char>('a' + i % 26));
    Error error;
    EXPECT_TRUE(LinuxFileManager().WriteFile(path, bytes, &error)) << error.LocalizedDescription();
    EXPECT_TRUE(TestSupport::ReadFileBytes(path) == bytes);
  }
  isWriting = false;
  tidier.join();
}

TEST(LinuxFileManager, TellsTimesBeyondItsClockAsTheFarthestItKnows) {
  const TestSupport::TemporaryDirectory folder;
  const std::string path = folder.WriteFile("file", "");
  constexpr std::time_t kYear2400 = 13'569'465'600;
  const timespec times[2] = {{0, UTIME_OMIT}, {kYear2400, 0}};
  ASSERT_EQ(::utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
  struct stat status {};
  ASSERT_EQ(::stat(path.c_str(), &status), 0);
  const auto attributes = LinuxFileManager().AttributesOfItem(path);
  ASSERT_TRUE(attributes);
  // A file system that cannot keep the time cuts it itself.
  const std::time_t farthest = 9'223'372'035;
  EXPECT_EQ(std::chrono::system_clock::to_time_t(attributes->modified),
            std::min(status.st_mtim.tv_sec, farthest));
}

}  // namespace
