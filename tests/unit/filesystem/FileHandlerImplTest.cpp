#include <limits>

#include <sys/stat.h>

#include "QEXCore_iOS/Platform/Host.h"
#include "services/filesystem/FileHandlerImpl.h"
#include "support/FileSizeLimit.h"
#include "unit/filesystem/FileSystemFixture.h"

namespace {

using TestSupport::FileFault;
using TestSupport::ReadFileBytes;
using Velmora::CreateNativeFileHandler;
using Velmora::FileHandlerInterface;

class FileHandlerImplTest : public FileSystemFixture {
 protected:
  std::shared_ptr<FileHandlerInterface> HandlerOf(const std::string& name) const {
    return CreateNativeFileHandler(PathOf(name));
  }
};

TEST_F(FileHandlerImplTest, TouchesNothingUntilItIsAsked) {
  const auto handler = HandlerOf("file");
  EXPECT_FALSE(Exists(PathOf("file")));
}

TEST_F(FileHandlerImplTest, TellsTheSizeOpenOrNot) {
  WriteFile("file", "12345");
  const auto handler = HandlerOf("file");
  EXPECT_EQ(handler->Size(), 5);
  ASSERT_TRUE(handler->OpenForWriting());
  EXPECT_EQ(handler->Size(), 0);
  Write(*handler, "123");
  EXPECT_EQ(handler->Size(), 3);
}

TEST_F(FileHandlerImplTest, TellsSizesBeyondFourGigabytes) {
  std::filesystem::resize_file(WriteFile("large"), std::uintmax_t{5} << 30);
  EXPECT_EQ(HandlerOf("large")->Size(), std::int64_t{5} << 30);
}

TEST_F(FileHandlerImplTest, CountsNothingForAMissingFile) {
  EXPECT_EQ(HandlerOf("missing")->Size(), 0);
  EXPECT_EQ(HandlerOf("missing")->LastModified().time_since_epoch().count(), 0);
}

TEST_F(FileHandlerImplTest, TellsTheTimeOfChangeInWholeSeconds) {
  const std::string path = WriteFile("file");
  const timespec times[2] = {{}, {.tv_sec = 1'700'000'000, .tv_nsec = 999'999'999}};
  ASSERT_EQ(::utimensat(-1, path.c_str(), times, 0), 0);
  EXPECT_EQ(HandlerOf("file")->LastModified().time_since_epoch().count(), 1'700'000'000'000'000);
}

TEST_F(FileHandlerImplTest, CutsTimesBefore1970TowardsIt) {
  const std::string path = WriteFile("file");
  const timespec times[2] = {{}, {.tv_sec = -2, .tv_nsec = 500'000'000}};
  ASSERT_EQ(::utimensat(-1, path.c_str(), times, 0), 0);
  EXPECT_EQ(HandlerOf("file")->LastModified().time_since_epoch().count(), -1'000'000);
}

TEST_F(FileHandlerImplTest, DoesNothingBeforeItIsOpen) {
  WriteFile("file");
  const auto handler = HandlerOf("file");
  EXPECT_EQ(Read(*handler, 5), "");
  EXPECT_EQ(Write(*handler, "abc"), 0U);
  EXPECT_FALSE(handler->MoveToOffset(0));
  EXPECT_FALSE(handler->Close());
  EXPECT_EQ(ReadFileBytes(PathOf("file")), "contents");
}

TEST_F(FileHandlerImplTest, ReadsOnFromWhereItStopped) {
  WriteFile("file", "abcdef");
  const auto handler = HandlerOf("file");
  ASSERT_TRUE(handler->OpenForReading());
  EXPECT_EQ(Read(*handler, 2), "ab");
  EXPECT_EQ(Read(*handler, 3), "cde");
  EXPECT_EQ(Read(*handler, 3), "f");
  EXPECT_EQ(Read(*handler, 3), "");
}

TEST_F(FileHandlerImplTest, FillsTheRestOfTheBufferWithZerosAndNothingBehindIt) {
  WriteFile("file", "ab");
  const auto handler = HandlerOf("file");
  ASSERT_TRUE(handler->OpenForReading());
  std::string buffer = "??????";
  EXPECT_EQ(handler->Read(4, reinterpret_cast<std::uint8_t*>(buffer.data())), 2U);
  EXPECT_EQ(buffer, std::string("ab\0\0??", 6));
  host_.fileManager->Fail(FileFault::Read);
  EXPECT_EQ(handler->Read(6, reinterpret_cast<std::uint8_t*>(buffer.data())), 0U);
  EXPECT_EQ(buffer, std::string(6, '\0'));
}

TEST_F(FileHandlerImplTest, MovesToAnyOffset) {
  WriteFile("file", "abcdef");
  const auto handler = HandlerOf("file");
  ASSERT_TRUE(handler->OpenForReading());
  EXPECT_TRUE(handler->MoveToOffset(4));
  EXPECT_EQ(Read(*handler, 1), "e");
  EXPECT_TRUE(handler->MoveToOffset(0));
  EXPECT_EQ(Read(*handler, 1), "a");
  EXPECT_TRUE(handler->MoveToOffset(std::numeric_limits<std::uint64_t>::max()));
  EXPECT_EQ(Read(*handler, 1), "");
}

TEST_F(FileHandlerImplTest, MakesTheFileThatItWrites) {
  const auto handler = HandlerOf("file");
  ASSERT_TRUE(handler->OpenForWriting());
  EXPECT_EQ(Write(*handler, "abc"), 3U);
  EXPECT_EQ(Write(*handler, std::string_view("\0\xff", 2)), 2U);
  EXPECT_TRUE(handler->Close());
  EXPECT_EQ(ReadFileBytes(PathOf("file")), std::string("abc\0\xff", 5));
}

TEST_F(FileHandlerImplTest, EmptiesAFileBeforeTheFirstWrite) {
  WriteFile("file", "old contents");
  const auto handler = HandlerOf("file");
  ASSERT_TRUE(handler->OpenForWriting());
  EXPECT_EQ(ReadFileBytes(PathOf("file")), "");
  EXPECT_EQ(Write(*handler, "new"), 3U);
  EXPECT_EQ(ReadFileBytes(PathOf("file")), "new");
}

TEST_F(FileHandlerImplTest, WritesAtTheOffset) {
  const auto handler = HandlerOf("file");
  ASSERT_TRUE(handler->OpenForWriting());
  Write(*handler, "abcdef");
  EXPECT_TRUE(handler->MoveToOffset(2));
  EXPECT_EQ(Write(*handler, "XY"), 2U);
  EXPECT_EQ(ReadFileBytes(PathOf("file")), "abXYef");
}

TEST_F(FileHandlerImplTest, WritesAndReadsTenMegabytes) {
  const std::string large(10'000'000, 'x');
  const auto handler = HandlerOf("file");
  ASSERT_TRUE(handler->OpenForWriting());
  EXPECT_EQ(Write(*handler, large), large.size());
  ASSERT_TRUE(handler->OpenForReading());
  EXPECT_TRUE(Read(*handler, 10'000'001) == large);
}

TEST_F(FileHandlerImplTest, OpensOnlyWhatIsAFile) {
  EXPECT_FALSE(HandlerOf("missing")->OpenForReading());
  EXPECT_FALSE(HandlerOf("missing/file")->OpenForWriting());
  EXPECT_FALSE(HandlerOf("")->OpenForReading());
  EXPECT_FALSE(HandlerOf("")->OpenForWriting());
  EXPECT_FALSE(CreateNativeFileHandler("")->OpenForReading());
  EXPECT_FALSE(CreateNativeFileHandler("")->OpenForWriting());
}

TEST_F(FileHandlerImplTest, UsesARelativePathAsItStands) {
  const ScopedCurrentDirectory here(folder_.Path());
  WriteFile("file", "12345");
  EXPECT_EQ(CreateNativeFileHandler("file")->Size(), 5);
  EXPECT_EQ(CreateNativeFileHandler("")->Size(), 0);
}

TEST_F(FileHandlerImplTest, OpeningReplacesWhatWasOpen) {
  WriteFile("file", "abcdef");
  const auto handler = HandlerOf("file");
  ASSERT_TRUE(handler->OpenForReading());
  EXPECT_EQ(Read(*handler, 3), "abc");
  ASSERT_TRUE(handler->OpenForReading());
  EXPECT_EQ(Read(*handler, 3), "abc");
}

TEST_F(FileHandlerImplTest, AFailedOpeningForReadingLeavesNothingOpen) {
  WriteFile("file", "abc");
  const auto handler = HandlerOf("file");
  ASSERT_TRUE(handler->OpenForReading());
  host_.fileManager->Fail(FileFault::OpenForReading);
  EXPECT_FALSE(handler->OpenForReading());
  EXPECT_FALSE(handler->Close());
}

TEST_F(FileHandlerImplTest, AFileThatCannotBeMadeLeavesOpenWhatWasOpen) {
  WriteFile("file", "abc");
  const auto handler = HandlerOf("file");
  ASSERT_TRUE(handler->OpenForReading());
  host_.fileManager->Fail(FileFault::OpenForWriting);
  EXPECT_FALSE(handler->OpenForWriting());
  EXPECT_EQ(Read(*handler, 3), "abc");
}

TEST_F(FileHandlerImplTest, SparesAFileThatItMustNotEmpty) {
  WriteFile("spared", "abc");
  std::filesystem::create_symlink("spared", PathOf("link"));
  Velmora::FileHandlerImpl link(PathOf("link"));
  EXPECT_FALSE(link.OpenForWritingUnless(PathOf("spared")));
  EXPECT_FALSE(link.Close());
  EXPECT_EQ(ReadFileBytes(PathOf("spared")), "abc");
  Velmora::FileHandlerImpl other(PathOf("other"));
  EXPECT_TRUE(other.OpenForWritingUnless(PathOf("spared")));
  EXPECT_EQ(Write(other, "abc"), 3U);
  EXPECT_TRUE(other.Close());
}

TEST_F(FileHandlerImplTest, TellsHowMuchWasWrittenWhenTheDiskIsFull) {
  const auto handler = HandlerOf("file");
  ASSERT_TRUE(handler->OpenForWriting());
  host_.fileManager->FailWritesAfter(5);
  EXPECT_EQ(Write(*handler, "abc"), 3U);
  EXPECT_EQ(Write(*handler, "def"), 2U);
  EXPECT_EQ(Write(*handler, "ghi"), 0U);
  EXPECT_EQ(ReadFileBytes(PathOf("file")), "abcde");
}

TEST_F(FileHandlerImplTest, TellsHowMuchOfOneWriteTheSystemTook) {
  const auto handler = HandlerOf("file");
  ASSERT_TRUE(handler->OpenForWriting());
  const std::string bytes(100'000, 'b');
  {
    const TestSupport::FileSizeLimit limit(70'000);
    EXPECT_EQ(Write(*handler, bytes), 70'000U);
    EXPECT_EQ(Write(*handler, bytes), 0U);
  }
  EXPECT_EQ(Write(*handler, "end"), 3U);
  EXPECT_TRUE(handler->Close());
  EXPECT_TRUE(ReadFileBytes(PathOf("file")) == bytes.substr(0, 70'000) + "end");
}

TEST_F(FileHandlerImplTest, EndsWhereAFileHasShrunkTo) {
  const std::string path = WriteFile("file", std::string(300'000, 'x'));
  const auto handler = HandlerOf("file");
  ASSERT_TRUE(handler->OpenForReading());
  EXPECT_EQ(Read(*handler, 128), std::string(128, 'x'));
  std::filesystem::resize_file(path, 150'000);
  ASSERT_TRUE(handler->MoveToOffset(149'900));
  std::string buffer(1'000, '?');
  EXPECT_EQ(handler->Read(1'000, reinterpret_cast<std::uint8_t*>(buffer.data())), 100U);
  EXPECT_EQ(buffer, std::string(100, 'x') + std::string(900, '\0'));
  EXPECT_EQ(Read(*handler, 1), "");
  ASSERT_TRUE(handler->MoveToOffset(200'000));
  EXPECT_EQ(Read(*handler, 1), "");
  EXPECT_EQ(handler->Size(), 150'000);
}

TEST_F(FileHandlerImplTest, FollowsLinks) {
  WriteFile("file", std::string(1'000, 'x'));
  std::filesystem::create_symlink("file", PathOf("link"));
  std::filesystem::create_symlink("loop", PathOf("loop"));
  EXPECT_EQ(HandlerOf("link")->Size(), 1'000);
  EXPECT_EQ(HandlerOf("link")->LastModified(), HandlerOf("file")->LastModified());
  EXPECT_EQ(HandlerOf("loop")->Size(), 0);
  EXPECT_EQ(HandlerOf("loop")->LastModified().time_since_epoch().count(), 0);
  EXPECT_FALSE(HandlerOf("loop")->OpenForReading());
  EXPECT_FALSE(HandlerOf("loop")->OpenForWriting());
}

TEST_F(FileHandlerImplTest, WritesNothingToAFullDevice) {
  const auto handler = CreateNativeFileHandler("/dev/full");
  ASSERT_TRUE(handler->OpenForWriting());
  EXPECT_EQ(Write(*handler, "abc"), 0U);
  EXPECT_TRUE(handler->Close());
}

TEST_F(FileHandlerImplTest, ReadsNothingFromADeviceThatFails) {
  const auto handler = CreateNativeFileHandler("/proc/self/mem");
  ASSERT_TRUE(handler->OpenForReading());
  EXPECT_EQ(Read(*handler, 10), "");
}

TEST_F(FileHandlerImplTest, ReadsNothingFromAFileOpenedForWriting) {
  const auto handler = HandlerOf("file");
  ASSERT_TRUE(handler->OpenForWriting());
  Write(*handler, "abc");
  handler->MoveToOffset(0);
  EXPECT_EQ(Read(*handler, 3), "");
  ASSERT_TRUE(handler->OpenForReading());
  EXPECT_EQ(Write(*handler, "x"), 0U);
  EXPECT_EQ(Read(*handler, 3), "abc");
}

TEST_F(FileHandlerImplTest, TakesNoBufferForNoBytes) {
  WriteFile("file", "abc");
  const auto handler = HandlerOf("file");
  ASSERT_TRUE(handler->OpenForReading());
  EXPECT_EQ(handler->Read(3, nullptr), 0U);
  EXPECT_EQ(Read(*handler, 3), "abc");
  ASSERT_TRUE(handler->OpenForWriting());
  EXPECT_EQ(handler->Write(3, nullptr), 0U);
  EXPECT_EQ(handler->Size(), 0);
}

TEST_F(FileHandlerImplTest, ReportsAnOffsetThatTheDeviceRefuses) {
  WriteFile("file", "abc");
  const auto handler = HandlerOf("file");
  ASSERT_TRUE(handler->OpenForReading());
  host_.fileManager->Fail(FileFault::Seek);
  EXPECT_FALSE(handler->MoveToOffset(1));
  EXPECT_EQ(Read(*handler, 3), "abc");
}

TEST_F(FileHandlerImplTest, ClosesOnce) {
  const auto handler = HandlerOf("file");
  ASSERT_TRUE(handler->OpenForWriting());
  EXPECT_TRUE(handler->Close());
  EXPECT_FALSE(handler->Close());
  EXPECT_EQ(Write(*handler, "abc"), 0U);
  EXPECT_TRUE(handler->OpenForReading());
}

TEST_F(FileHandlerImplTest, ReportsADeviceThatFailsToClose) {
  const auto handler = HandlerOf("file");
  ASSERT_TRUE(handler->OpenForWriting());
  host_.fileManager->Fail(FileFault::Close);
  EXPECT_FALSE(handler->Close());
  EXPECT_EQ(Write(*handler, "abc"), 0U);
}

}  // namespace
