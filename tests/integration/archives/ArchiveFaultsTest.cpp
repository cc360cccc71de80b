// Unpacking where the system refuses to go on: in processes of their own, whose circumstances and
// whose end change nothing for the tests.

#include <csignal>
#include <filesystem>
#include <iterator>
#include <memory>

#include <gmock/gmock.h>

#include "ArchiveFixture.h"
#include "support/FileSizeLimit.h"
#include "support/ForkedProcess.h"
#include "support/WaitUntil.h"
#include "support/ZipBuilder.h"

namespace {

namespace fs = std::filesystem;

using TestSupport::ArchiveOf;
using TestSupport::AsStranger;
using TestSupport::DeflatedEntry;
using TestSupport::OnSmallDisk;
using TestSupport::StoredEntry;

class ArchiveFaults : public ArchiveFixture {
 protected:
  // Unpacking in this process must end like this, with no file left open.
  void ExpectResult(const std::string& result) const {
    const std::size_t before = OpenFiles();
    EXPECT_EQ(Extract(), result);
    EXPECT_EQ(OpenFiles(), before);
  }

  // The same in a process of a user who owns nothing here; also that the archive stays as it is.
  void ExpectAsStranger(const std::string& archive, const std::string& result,
                        unsigned permissions = 0644) const {
    const std::string path = folder_.WriteFile("a.zip", archive);
    Permit(path, permissions);
    EXPECT_TRUE(AsStranger([&] {
      ExpectResult(result);
      return true;
    }));
    Permit(path, 0644);
    EXPECT_TRUE(TestSupport::ReadFileBytes(path) == archive);
  }

  // The same where "ours" is a file system of one megabyte; where none may be mounted, no file may
  // grow beyond that.
  void ExpectOnSmallDisk(const std::string& archive, const std::string& result) const {
    const std::string path = folder_.WriteFile("a.zip", archive);
    fs::create_directory(folder_.PathOf("ours"));
    const auto done = OnSmallDisk(folder_.PathOf("ours"), [&] {
      ExpectResult(result);
      return true;
    });
    if (!done) {
      const TestSupport::FileSizeLimit limit(1 << 20);
      ExpectResult(result);
    }
    EXPECT_TRUE(done.value_or(true));
    EXPECT_TRUE(TestSupport::ReadFileBytes(path) == archive);
  }

  // A process that unpacks the archive again and again, and that is in the middle of "large".
  std::unique_ptr<Program> WorkerInTheMiddle() const {
    auto worker = std::make_unique<Program>(
        std::vector<std::string>{WORKER_PROGRAM, folder_.PathOf("a.zip"), folder_.PathOf("ours")},
        folder_.Path());
    std::error_code missing;
    EXPECT_TRUE(TestSupport::WaitUntil([&] {
      const auto size = fs::file_size(folder_.PathOf("ours/large"), missing);
      return !missing && size > 0;
    }));
    return worker;
  }

  static std::size_t OpenFiles() {
    const fs::directory_iterator descriptors("/proc/self/fd");
    return static_cast<std::size_t>(std::distance(begin(descriptors), end(descriptors)));
  }

  static void Permit(const std::string& path, unsigned permissions) {
    fs::permissions(path, static_cast<fs::perms>(permissions));
  }
};

TEST_F(ArchiveFaults, AFullDiskShowsAsAWrongSize) {
  for (const bool isDeflated : {false, true}) {
    const std::string contents = RandomBytes(3'000'000);
    const auto entry = isDeflated ? DeflatedEntry("d/a", contents) : StoredEntry("d/a", contents);
    ExpectOnSmallDisk(
        ArchiveOf({StoredEntry("b", "first"), entry}),
        "compressed-file.decompression-failed: Uncompressed file size mismatch for d/a");
  }
}

TEST_F(ArchiveFaults, ASmallArchiveFitsOnASmallDisk) {
  ExpectOnSmallDisk(ArchiveOf({StoredEntry("a", RandomBytes(500'000))}), "");
}

TEST_F(ArchiveFaults, ADirectoryThatMayNotBeWrittenIsReported) {
  Permit(folder_.Path(), 0755);
  fs::create_directory(folder_.PathOf("ours"));
  Permit(folder_.PathOf("ours"), 0555);
  ExpectAsStranger(ArchiveOf({StoredEntry("a", "x")}),
                   "compressed-file.write-failed: Failed to open a for writing");
  ExpectAsStranger(ArchiveOf({StoredEntry("d/a", "x")}),
                   "compressed-file.write-failed: Failed to open d/a for writing");
  EXPECT_EQ(Ours(), Tree());
  Permit(folder_.PathOf("ours"), 0755);
}

TEST_F(ArchiveFaults, AFileThatMayNotBeWrittenIsReported) {
  Permit(folder_.Path(), 0755);
  Permit(folder_.WriteFile("ours/a", "old"), 0444);
  Permit(folder_.PathOf("ours"), 0777);
  ExpectAsStranger(ArchiveOf({StoredEntry("a", "new")}),
                   "compressed-file.write-failed: Failed to open a for writing");
  EXPECT_EQ(Ours(), Tree({{"a", "old"}}));
}

TEST_F(ArchiveFaults, AnArchiveThatMayNotBeReadIsReported) {
  Permit(folder_.Path(), 0755);
  ExpectAsStranger(ArchiveOf({StoredEntry("a", "x")}),
                   "compressed-file.read-failed: Failed to open zip file", 0);
}

TEST_F(ArchiveFaults, AnArchiveThatShrinksEndsTheExtraction) {
  const std::string path = folder_.WriteFile(
      "a.zip",
      ArchiveOf({StoredEntry("first", "1"), StoredEntry("large", RandomBytes(50'000'000))}));
  const auto worker = WorkerInTheMiddle();
  fs::resize_file(path, 100'000);
  EXPECT_EQ(worker->Wait(), 0);
  // The second where it shrinks just as the worker opens it anew.
  EXPECT_THAT(worker->Output(),
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
  const auto worker = WorkerInTheMiddle();
  worker->Kill();
  EXPECT_EQ(worker->Wait(), -SIGKILL);
  EXPECT_TRUE(TestSupport::ReadFileBytes(path) == archive);
  EXPECT_EQ(Ours().at("first"), "first");
  EXPECT_EQ(Extract(), "");
  EXPECT_TRUE(Ours().at("large") == contents);
}

}  // namespace
