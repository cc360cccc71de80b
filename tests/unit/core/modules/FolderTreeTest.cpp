#include <filesystem>
#include <string>

#include "modules/FolderTree.h"
#include "services/filesystem/NativeFileSystemService.h"
#include "support/FakeHost.h"
#include "support/LogCapture.h"
#include "support/TemporaryDirectory.h"

namespace {

class FolderTreeTest : public testing::Test {
 protected:
  FolderTreeTest() {
    log.AllowLines(TestSupport::LogLevel::Debug, "NativeFileSystemService", testing::_);
    directory.WriteFile("tree/a.txt", "a");
    directory.WriteFile("tree/b/c/d.txt", "d");
    directory.WriteFile("tree/b/e.txt", "e");
    std::filesystem::create_directory(directory.PathOf("tree/empty"));
    directory.WriteFile("beside.txt", "stays");
  }

  bool Delete(const std::string& name) {
    return Velmora::FolderTree::Delete(*Velmora::CreateNativeFileSystemService(),
                                       directory.PathOf(name), problem);
  }

  TestSupport::FakeHost host;
  TestSupport::LogCapture log;
  TestSupport::TemporaryDirectory directory;
  std::string problem;
};

TEST_F(FolderTreeTest, DeletesAFolderWithAllThatIsInIt) {
  EXPECT_TRUE(Delete("tree"));
  EXPECT_FALSE(std::filesystem::exists(directory.PathOf("tree")));
  EXPECT_TRUE(std::filesystem::exists(directory.PathOf("beside.txt")));
  EXPECT_EQ(problem, "");
}

TEST_F(FolderTreeTest, AFolderThatIsNotThereIsGone) { EXPECT_TRUE(Delete("missing")); }

TEST_F(FolderTreeTest, SaysWhyAFolderCannotBeDeleted) {
  log.ExpectLine(TestSupport::LogLevel::Error, "NativeFileSystemService",
                 testing::HasSubstr("The device failed."));
  host.fileManager->Fail(TestSupport::FileFault::RemoveItem);
  EXPECT_FALSE(Delete("tree"));
  EXPECT_EQ(problem, "The device failed.");
  host.fileManager->Heal();
  host.fileManager->FailSilently(TestSupport::FileFault::RemoveItem);
  EXPECT_FALSE(Delete("tree"));
  EXPECT_EQ(problem, "something in it cannot be deleted");
}

TEST_F(FolderTreeTest, DeletesAFolderDeeperThanAnyStack) {
  std::string path = "tree";
  while (path.size() < 3'500) path += "/deeper";
  std::filesystem::create_directories(directory.PathOf(path));
  EXPECT_TRUE(Delete("tree"));
  EXPECT_FALSE(std::filesystem::exists(directory.PathOf("tree")));
}

}  // namespace
