#include <filesystem>
#include <string>
#include <thread>

#include <sys/stat.h>

#include "contract/FileManagerContract.h"
#include "support/FileSizeLimit.h"

namespace FileManagerContract {
namespace {

namespace fs = std::filesystem;

using Platform::Error;
using testing::HasSubstr;
using TestSupport::FileSizeLimit;
using TestSupport::ReadFileBytes;

template <class Implementation>
class FileWritingContractTest : public Fixture<Implementation> {
 protected:
  std::size_t NumberOfEntries() const {
    return this->manager_.ContentsOfDirectory(this->folder_.Path(), nullptr).size();
  }
};

TYPED_TEST_SUITE(FileWritingContractTest, Implementations);

TYPED_TEST(FileWritingContractTest, WritesAFileOfExactlyTheBytes) {
  const std::string path = this->PathOf("file");
  const std::string bytes("a\0b\n\xff", 5);
  EXPECT_TRUE(this->manager_.WriteFile(path, bytes, nullptr));
  EXPECT_EQ(ReadFileBytes(path), bytes);
  EXPECT_TRUE(this->manager_.WriteFile(path, "", nullptr));
  EXPECT_EQ(ReadFileBytes(path), "");
  const std::string large(10'000'000, 'l');
  EXPECT_TRUE(this->manager_.WriteFile(path, large, nullptr));
  EXPECT_TRUE(ReadFileBytes(path) == large);
  EXPECT_EQ(this->NumberOfEntries(), 1U);
}

TYPED_TEST(FileWritingContractTest, ReplacesALinkAndNotWhatItPointsTo) {
  const std::string target = this->WriteFile("target", "former");
  const std::string link = this->PathOf("link");
  fs::create_symlink(target, link);
  EXPECT_TRUE(this->manager_.WriteFile(link, "new", nullptr));
  EXPECT_EQ(ReadFileBytes(target), "former");
  EXPECT_EQ(ReadFileBytes(link), "new");
}

TYPED_TEST(FileWritingContractTest, LeavesTheFormerFileWhenTheDiskIsFull) {
  const std::string path = this->WriteFile("file", "former");
  Error error;
  {
    const FileSizeLimit full(1000);
    EXPECT_FALSE(this->manager_.WriteFile(path, std::string(2000, 'x'), &error));
  }
  EXPECT_THAT(error.LocalizedDescription(), HasSubstr("write the file \"" + path + "\""));
  EXPECT_EQ(ReadFileBytes(path), "former");
  EXPECT_EQ(this->NumberOfEntries(), 1U);
}

TYPED_TEST(FileWritingContractTest, SaysWhereNoFileCanBeWritten) {
  fs::create_directory(this->PathOf("folder"));
  for (const std::string& path : {this->PathOf("missing/file"), this->PathOf("folder"),
                                  this->PathOf(std::string(256, 'n'))}) {
    Error error;
    EXPECT_FALSE(this->manager_.WriteFile(path, "bytes", &error)) << path;
    EXPECT_THAT(error.LocalizedDescription(), HasSubstr("Cannot write the file")) << path;
    EXPECT_FALSE(this->manager_.WriteFile(path, "bytes", nullptr)) << path;
  }
  for (const std::string& path : this->ImpossiblePaths()) {
    EXPECT_FALSE(this->manager_.WriteFile(path, "bytes", nullptr));
  }
  EXPECT_EQ(this->NumberOfEntries(), 1U);
}

TYPED_TEST(FileWritingContractTest, IsNeverSeenHalfWritten) {
  const std::string path = this->WriteFile("file", std::string(100'000, 'a'));
  std::thread writer([&] {
    for (int i = 0; i < 50; ++i) {
      EXPECT_TRUE(
          this->manager_.WriteFile(path, std::string(100'000, i % 2 == 0 ? 'b' : 'a'), nullptr));
    }
  });
  for (int i = 0; i < 200; ++i) {
    const std::string seen = ReadFileBytes(path);
    EXPECT_EQ(seen.size(), 100'000U);
    EXPECT_EQ(seen.find_first_not_of(seen.front()), std::string::npos);
  }
  writer.join();
}

}  // namespace
}  // namespace FileManagerContract
