// Unpacking where the system refuses to go on: in a process of its own, whose end changes nothing
// for the tests.

#include <csignal>
#include <filesystem>

#include <gmock/gmock.h>

#include "ArchiveFixture.h"
#include "support/WaitUntil.h"
#include "support/ZipBuilder.h"

namespace {

namespace fs = std::filesystem;

using TestSupport::ArchiveOf;
using TestSupport::DeflatedEntry;
using TestSupport::StoredEntry;

class ArchiveFaults : public ArchiveFixture {
 protected:
  // What the worker prints; also that the archive stays as it is.
  std::string Work(const std::string& circumstances, const std::string& archive,
                   unsigned permissions = 0644) const {
    const std::string path = folder_.WriteFile("a.zip", archive);
    Permit(path, permissions);
    Program worker({WORKER_PROGRAM, circumstances, path, folder_.PathOf("ours")}, folder_.Path());
    EXPECT_EQ(worker.Wait(), 0);
    Permit(path, 0644);
    EXPECT_TRUE(TestSupport::ReadFileBytes(path) == archive);
    return worker.Output();
  }

  static void Permit(const std::string& path, unsigned permissions) {
    fs::permissions(path, static_cast<fs::perms>(permissions));
  }
};

TEST_F(ArchiveFaults, AFullDiskShowsAsAWrongSize) {
  fs::create_directory(folder_.PathOf("ours"));
  for (const bool isDeflated : {false, true}) {
    const std::string contents = RandomBytes(3'000'000);
    const auto entry = isDeflated ? DeflatedEntry("d/a", contents) : StoredEntry("d/a", contents);
    EXPECT_EQ(Work("full", ArchiveOf({StoredEntry("b", "first"), entry})),
              "compressed-file.decompression-failed: Uncompressed file size mismatch for d/a\n");
  }
}

TEST_F(ArchiveFaults, ASmallArchiveFitsOnASmallDisk) {
  fs::create_directory(folder_.PathOf("ours"));
  EXPECT_EQ(Work("full", ArchiveOf({StoredEntry("a", RandomBytes(500'000))})), "done\n");
}

TEST_F(ArchiveFaults, ADirectoryThatMayNotBeWrittenIsReported) {
  Permit(folder_.Path(), 0755);
  fs::create_directory(folder_.PathOf("ours"));
  Permit(folder_.PathOf("ours"), 0555);
  EXPECT_EQ(Work("unprivileged", ArchiveOf({StoredEntry("a", "x")})),
            "compressed-file.write-failed: Failed to open a for writing\n");
  EXPECT_EQ(Work("unprivileged", ArchiveOf({StoredEntry("d/a", "x")})),
            "compressed-file.write-failed: Failed to open d/a for writing\n");
  EXPECT_EQ(Ours(), Tree());
  Permit(folder_.PathOf("ours"), 0755);
}

TEST_F(ArchiveFaults, AFileThatMayNotBeWrittenIsReported) {
  Permit(folder_.Path(), 0755);
  Permit(folder_.WriteFile("ours/a", "old"), 0444);
  Permit(folder_.PathOf("ours"), 0777);
  EXPECT_EQ(Work("unprivileged", ArchiveOf({StoredEntry("a", "new")})),
            "compressed-file.write-failed: Failed to open a for writing\n");
  EXPECT_EQ(Ours(), Tree({{"a", "old"}}));
}

TEST_F(ArchiveFaults, AnArchiveThatMayNotBeReadIsReported) {
  Permit(folder_.Path(), 0755);
  EXPECT_EQ(Work("unprivileged", ArchiveOf({StoredEntry("a", "x")}), 0),
            "compressed-file.read-failed: Failed to open zip file\n");
}

TEST_F(ArchiveFaults, AnArchiveThatShrinksEndsTheExtraction) {
  const std::string path = folder_.WriteFile(
      "a.zip",
      ArchiveOf({StoredEntry("first", "1"), StoredEntry("large", RandomBytes(50'000'000))}));
  Program worker({WORKER_PROGRAM, "again", path, folder_.PathOf("ours")}, folder_.Path());
  std::error_code missing;
  EXPECT_TRUE(TestSupport::WaitUntil([&] {
    const auto size = fs::file_size(folder_.PathOf("ours/large"), missing);
    return !missing && size > 0;
  }));
  fs::resize_file(path, 100'000);
  EXPECT_EQ(worker.Wait(), 0);
  // The second where it shrinks just as the worker opens it anew.
  EXPECT_THAT(worker.Output(),
              testing::AnyOf("compressed-file.read-failed: Failed to read zip file\n",
                             "compressed-file.corrupted: File does not appear to be a zip file\n"));
  EXPECT_EQ(fs::file_size(path), 100'000U);
  EXPECT_EQ(Ours().at("first"), "1");
}

TEST_F(ArchiveFaults, AKilledProcessLeavesTheArchiveAndNothingInTheWay) {
  const std::string contents(20'000'000, 'x');
  const std::string archive =
      ArchiveOf({StoredEntry("first", "first"), DeflatedEntry("large", contents)});
  const std::string path = folder_.WriteFile("a.zip", archive);
  {
    Program worker({WORKER_PROGRAM, "again", path, folder_.PathOf("ours")}, folder_.Path());
    std::error_code missing;
    EXPECT_TRUE(TestSupport::WaitUntil([&] {
      const auto size = fs::file_size(folder_.PathOf("ours/large"), missing);
      return !missing && size > 0;
    }));
    worker.Kill();
    EXPECT_EQ(worker.Wait(), -SIGKILL);
  }
  EXPECT_TRUE(TestSupport::ReadFileBytes(path) == archive);
  EXPECT_EQ(ReadTree(folder_.PathOf("ours")).at("first"), "first");
  EXPECT_EQ(Work("plain", archive), "done\n");
  EXPECT_TRUE(Ours().at("large") == contents);
}

}  // namespace
