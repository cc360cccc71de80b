#include "services/filesystem/DirectoryHandlerImpl.h"
#include "unit/filesystem/FileSystemFixture.h"

namespace {

namespace fs = std::filesystem;

using TestSupport::FileFault;
using Velmora::DirectoryHandlerInterface;

class DirectoryHandlerImplTest : public FileSystemFixture {
 protected:
  static std::shared_ptr<DirectoryHandlerInterface> At(const std::string& path) {
    return DirectoryHandlerInterface::CreateFromPath(path);
  }
  std::shared_ptr<DirectoryHandlerInterface> Here() const { return At(folder_.Path()); }
};

TEST_F(DirectoryHandlerImplTest, KeepsThePathAsGiven) {
  for (const char* path : {"/a/../b//", "", ".", "relative/./path", "/no/such/place"}) {
    EXPECT_EQ(At(path)->GetPath(), path);
  }
}

TEST_F(DirectoryHandlerImplTest, MovesDownWithoutALook) {
  const auto handler = Here();
  EXPECT_TRUE(handler->MoveToSubDirectory("a", false));
  EXPECT_EQ(handler->GetPath(), PathOf("a"));
  EXPECT_TRUE(handler->MoveToSubDirectory("b//c/./", false));
  EXPECT_EQ(handler->GetPath(), PathOf("a/b/c"));
  EXPECT_TRUE(fs::is_empty(folder_.Path()));
}

TEST_F(DirectoryHandlerImplTest, MovesUpByName) {
  const auto handler = At("/a/b");
  EXPECT_TRUE(handler->MoveToSubDirectory("..", false));
  EXPECT_EQ(handler->GetPath(), "/a");
  EXPECT_TRUE(handler->MoveToSubDirectory("../../..", false));
  EXPECT_EQ(handler->GetPath(), "/");
}

TEST_F(DirectoryHandlerImplTest, StaysWhereItIsForAnEmptyName) {
  const auto handler = Here();
  EXPECT_TRUE(handler->MoveToSubDirectory("", false));
  EXPECT_EQ(handler->GetPath(), folder_.Path());
}

TEST_F(DirectoryHandlerImplTest, MovesToTheParent) {
  const auto handler = At("/a/b");
  EXPECT_TRUE(handler->MoveToParentDirectory());
  EXPECT_EQ(handler->GetPath(), "/a");
  EXPECT_TRUE(handler->MoveToParentDirectory());
  EXPECT_EQ(handler->GetPath(), "/");
  EXPECT_TRUE(handler->MoveToParentDirectory());
  EXPECT_EQ(handler->GetPath(), "/");
}

TEST_F(DirectoryHandlerImplTest, MovesAboveARelativePath) {
  const auto handler = At("a");
  EXPECT_TRUE(handler->MoveToParentDirectory());
  EXPECT_EQ(handler->GetPath(), ".");
  EXPECT_TRUE(handler->MoveToParentDirectory());
  EXPECT_EQ(handler->GetPath(), "..");
  EXPECT_TRUE(handler->MoveToSubDirectory("b", false));
  EXPECT_EQ(handler->GetPath(), "../b");
}

TEST_F(DirectoryHandlerImplTest, MakesTheDirectoryThatItMovesTo) {
  const auto handler = Here();
  EXPECT_TRUE(handler->MoveToSubDirectory("a/b", true));
  EXPECT_EQ(handler->GetPath(), PathOf("a/b"));
  EXPECT_TRUE(fs::is_directory(PathOf("a/b")));
  EXPECT_TRUE(handler->MoveToSubDirectory("..", true));
  EXPECT_EQ(handler->GetPath(), PathOf("a"));
}

TEST_F(DirectoryHandlerImplTest, StaysWhenTheDirectoryCannotBeMade) {
  WriteFile("file");
  const auto handler = Here();
  EXPECT_FALSE(handler->MoveToSubDirectory("file", true));
  EXPECT_FALSE(handler->MoveToSubDirectory("file/below", true));
  EXPECT_FALSE(handler->MoveToSubDirectory(std::string(300, 'n'), true));
  host_.fileManager->Fail(FileFault::CreateDirectory);
  EXPECT_FALSE(handler->MoveToSubDirectory("new", true));
  EXPECT_EQ(handler->GetPath(), folder_.Path());
}

TEST_F(DirectoryHandlerImplTest, MakesFileHandlersInTheDirectory) {
  const auto file = Here()->CreateFileHandlerInDirectory("file");
  ASSERT_NE(file, nullptr);
  EXPECT_TRUE(fs::is_empty(folder_.Path()));
  ASSERT_TRUE(file->OpenForWriting());
  EXPECT_TRUE(fs::is_regular_file(PathOf("file")));
}

TEST_F(DirectoryHandlerImplTest, MakesTheDirectoriesOnTheWayToAFile) {
  const auto file = Here()->CreateFileHandlerInDirectory("a/b/file");
  ASSERT_NE(file, nullptr);
  EXPECT_TRUE(fs::is_directory(PathOf("a/b")));
  EXPECT_FALSE(Exists(PathOf("a/b/file")));
  ASSERT_TRUE(file->OpenForWriting());
  EXPECT_TRUE(fs::is_regular_file(PathOf("a/b/file")));
}

TEST_F(DirectoryHandlerImplTest, MakesTheDirectoryItselfForAFile) {
  ASSERT_NE(At(PathOf("new"))->CreateFileHandlerInDirectory("file"), nullptr);
  EXPECT_TRUE(fs::is_directory(PathOf("new")));
}

TEST_F(DirectoryHandlerImplTest, ReachesFilesOutsideTheDirectory) {
  const auto handler = At(PathOf("inner"));
  const auto file = handler->CreateFileHandlerInDirectory("../outer/file");
  ASSERT_NE(file, nullptr);
  ASSERT_TRUE(file->OpenForWriting());
  EXPECT_TRUE(Exists(PathOf("outer/file")));
  EXPECT_FALSE(Exists(PathOf("inner")));
  EXPECT_EQ(handler->GetPath(), PathOf("inner"));
}

TEST_F(DirectoryHandlerImplTest, MakesNoFileHandlerWhereNoFileCanBe) {
  WriteFile("file");
  EXPECT_EQ(Here()->CreateFileHandlerInDirectory("file/below"), nullptr);
  EXPECT_EQ(Here()->CreateFileHandlerInDirectory("file/far/below"), nullptr);
  EXPECT_EQ(At(PathOf("file"))->CreateFileHandlerInDirectory("below"), nullptr);
  host_.fileManager->Fail(FileFault::CreateDirectory);
  EXPECT_EQ(Here()->CreateFileHandlerInDirectory("new/file"), nullptr);
}

TEST_F(DirectoryHandlerImplTest, MovesIntoNoLoopOfLinks) {
  std::filesystem::create_symlink("loop", PathOf("loop"));
  const auto directory = DirectoryHandlerInterface::CreateFromPath(folder_.Path());
  EXPECT_FALSE(directory->MoveToSubDirectory("loop", true));
  EXPECT_FALSE(directory->MoveToSubDirectory("loop/below", true));
  EXPECT_EQ(directory->CreateFileHandlerInDirectory("loop/file"), nullptr);
  EXPECT_EQ(directory->GetPath(), folder_.Path());
}

TEST_F(DirectoryHandlerImplTest, WorksFromARelativeDirectory) {
  const ScopedCurrentDirectory here(folder_.Path());
  const auto file = At("")->CreateFileHandlerInDirectory("file");
  ASSERT_NE(file, nullptr);
  EXPECT_TRUE(file->OpenForWriting());
  EXPECT_TRUE(Exists(PathOf("file")));
  ASSERT_NE(At("a")->CreateFileHandlerInDirectory("b/file"), nullptr);
  EXPECT_TRUE(fs::is_directory(PathOf("a/b")));
}

TEST_F(DirectoryHandlerImplTest, MakesTheDefaultCacheDirectory) {
  host_.fileManager->SetCachesDirectory(PathOf("some/caches"));
  EXPECT_EQ(DirectoryHandlerInterface::GetDefaultCacheDirectory(), PathOf("some/caches"));
  EXPECT_TRUE(fs::is_directory(PathOf("some/caches")));
  EXPECT_EQ(DirectoryHandlerInterface::GetDefaultCacheDirectory(), PathOf("some/caches"));
}

TEST_F(DirectoryHandlerImplTest, NamesADefaultCacheDirectoryThatCannotBeMade) {
  host_.fileManager->SetCachesDirectory(WriteFile("file") + "/caches");
  EXPECT_EQ(DirectoryHandlerInterface::GetDefaultCacheDirectory(), PathOf("file/caches"));
  host_.fileManager->SetCachesDirectory(PathOf("file"));
  EXPECT_EQ(DirectoryHandlerInterface::GetDefaultCacheDirectory(), PathOf("file"));
}

TEST_F(DirectoryHandlerImplTest, HasNoDefaultCacheDirectoryWhereThePlatformNamesNone) {
  host_.fileManager->SetCachesDirectory("");
  EXPECT_EQ(DirectoryHandlerInterface::GetDefaultCacheDirectory(), "");
  EXPECT_EQ(DirectoryHandlerInterface::CreateFromDefaultCache()->GetPath(), "");
}

TEST_F(DirectoryHandlerImplTest, StartsAtTheDefaultCacheDirectory) {
  const auto handler = DirectoryHandlerInterface::CreateFromDefaultCache();
  EXPECT_EQ(handler->GetPath(), host_.fileManager->CachesDirectory());
  EXPECT_TRUE(fs::is_directory(handler->GetPath()));
}

}  // namespace
