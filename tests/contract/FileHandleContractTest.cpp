#include <cstdint>
#include <filesystem>
#include <fstream>
#include <limits>
#include <numeric>
#include <optional>
#include <random>

#include <fcntl.h>

#include "QEXCore_iOS/Platform/DeviceError.h"
#include "contract/FileManagerContract.h"
#include "support/FileSizeLimit.h"

namespace FileManagerContract {
namespace {

namespace fs = std::filesystem;

using Platform::DeviceError;
using Platform::FileHandle;
using TestSupport::ReadFileBytes;

template <class Implementation>
class FileHandleContractTest : public Fixture<Implementation> {
 protected:
  std::unique_ptr<FileHandle> OpenForReading(const std::string& contents) {
    return this->manager_.OpenForReading(this->WriteFile("file", contents));
  }

  // At the start of what it has written.
  std::unique_ptr<FileHandle> OpenForWriting(const std::string& contents) {
    auto handle = this->manager_.OpenForWriting(this->PathOf("file"), "");
    Write(*handle, contents);
    handle->Seek(0);
    return handle;
  }

  static std::string Read(FileHandle& handle, std::size_t count) {
    std::string text(count, '?');
    text.resize(handle.Read(text.data(), count));
    return text;
  }

  static void Write(FileHandle& handle, const std::string& text) {
    handle.Write(text.data(), text.size());
  }

  // The process's descriptor of the file, if it has one open.
  std::optional<int> DescriptorOf(const std::string& path) const {
    for (const auto& entry : fs::directory_iterator("/proc/self/fd")) {
      std::error_code error;
      if (fs::read_symlink(entry.path(), error) == path) {
        return std::stoi(entry.path().filename().string());
      }
    }
    return std::nullopt;
  }
};

// No two neighbours alike, and long enough to cross every buffer several times.
std::string LongText() {
  std::string text(300'000, '\0');
  std::mt19937 random(7);
  for (char& character : text) character = static_cast<char>(random());
  return text;
}

TYPED_TEST_SUITE(FileHandleContractTest, Implementations);

TYPED_TEST(FileHandleContractTest, ReadsOnFromWhereItStopped) {
  const auto handle = this->OpenForReading("abcdef");
  EXPECT_EQ(handle->Offset(), 0U);
  EXPECT_EQ(this->Read(*handle, 2), "ab");
  EXPECT_EQ(handle->Offset(), 2U);
  EXPECT_EQ(this->Read(*handle, 3), "cde");
  EXPECT_EQ(handle->Offset(), 5U);
}

TYPED_TEST(FileHandleContractTest, ReadsLessOnlyAtTheEnd) {
  const auto handle = this->OpenForReading("abc");
  EXPECT_EQ(this->Read(*handle, 10), "abc");
  EXPECT_EQ(handle->Offset(), 3U);
  EXPECT_EQ(this->Read(*handle, 10), "");
  EXPECT_EQ(handle->Offset(), 3U);
}

TYPED_TEST(FileHandleContractTest, ReadsNothingFromAnEmptyFile) {
  EXPECT_EQ(this->Read(*this->OpenForReading(""), 1), "");
}

TYPED_TEST(FileHandleContractTest, ReadsAndWritesNothingWhenAskedForNothing) {
  const auto reading = this->OpenForReading("abc");
  EXPECT_EQ(reading->Read(nullptr, 0), 0U);
  EXPECT_EQ(this->Read(*reading, 1), "a");
  EXPECT_EQ(reading->Read(nullptr, 0), 0U);
  const auto writing = this->OpenForWriting("abc");
  writing->Write(nullptr, 0);
  EXPECT_EQ(writing->Offset(), 0U);
}

TYPED_TEST(FileHandleContractTest, GivesTheSameBytesWhateverTheStep) {
  const std::string text = LongText();
  for (const std::size_t step :
       std::vector<std::size_t>{7, 4096, 65'535, 65'536, 65'537, 1'000'000}) {
    const auto handle = this->OpenForReading(text);
    std::string read;
    for (std::string piece = "?"; !piece.empty();) {
      piece = this->Read(*handle, step);
      read += piece;
    }
    EXPECT_TRUE(read == text) << "in steps of " << step;
  }
}

TYPED_TEST(FileHandleContractTest, FindsItsWayBetweenSeeksAndReads) {
  const std::string text = LongText();
  const auto handle = this->OpenForReading(text);
  std::mt19937 random(11);
  for (int round = 0; round < 2000; ++round) {
    const std::size_t offset = random() % (text.size() + 1000);
    const std::size_t count = random() % (round % 10 == 0 ? 100'000 : 200);
    handle->Seek(offset);
    ASSERT_EQ(handle->Offset(), offset);
    const std::string expected = offset < text.size() ? text.substr(offset, count) : "";
    ASSERT_TRUE(this->Read(*handle, count) == expected) << offset << " " << count;
    ASSERT_EQ(handle->Offset(), offset + expected.size());
  }
}

TYPED_TEST(FileHandleContractTest, ReadsTenMegabytesAtOnce) {
  std::string text(10'000'000, '\0');
  std::iota(text.begin(), text.end(), '\0');
  EXPECT_TRUE(this->Read(*this->OpenForReading(text), text.size()) == text);
}

TYPED_TEST(FileHandleContractTest, SeesWhatIsAddedAtTheEnd) {
  const auto handle = this->OpenForReading("abc");
  EXPECT_EQ(this->Read(*handle, 10), "abc");
  std::ofstream(this->PathOf("file"), std::ios::app) << "def";
  EXPECT_EQ(this->Read(*handle, 10), "def");
}

TYPED_TEST(FileHandleContractTest, ReadsNothingBeyondTheEnd) {
  const auto handle = this->OpenForReading("abc");
  for (const std::uint64_t offset :
       {std::uint64_t{4}, std::uint64_t{1} << 40, std::numeric_limits<std::uint64_t>::max()}) {
    handle->Seek(offset);
    EXPECT_EQ(this->Read(*handle, 10), "");
    EXPECT_EQ(handle->Offset(), offset);
  }
  handle->Seek(1);
  EXPECT_EQ(this->Read(*handle, 10), "bc");
}

TYPED_TEST(FileHandleContractTest, OverwritesFromTheStart) {
  const auto handle = this->OpenForWriting("abcdef");
  EXPECT_EQ(handle->Offset(), 0U);
  this->Write(*handle, "XY");
  EXPECT_EQ(handle->Offset(), 2U);
  handle->Seek(4);
  this->Write(*handle, "Z");
  EXPECT_EQ(ReadFileBytes(this->PathOf("file")), "XYcdZf");
}

TYPED_TEST(FileHandleContractTest, WritesStraightDown) {
  const auto handle = this->OpenForWriting("");
  this->Write(*handle, "a");
  EXPECT_EQ(ReadFileBytes(this->PathOf("file")), "a");
  this->Write(*handle, std::string("\0b", 2));
  EXPECT_EQ(ReadFileBytes(this->PathOf("file")), std::string("a\0b", 3));
}

TYPED_TEST(FileHandleContractTest, WritesBeyondTheEndLeaveZeroBytes) {
  const auto handle = this->OpenForWriting("ab");
  handle->Seek(4);
  this->Write(*handle, "c");
  EXPECT_EQ(ReadFileBytes(this->PathOf("file")), std::string("ab\0\0c", 5));
}

TYPED_TEST(FileHandleContractTest, ThrowsWhenTheDiskIsFull) {
  const auto handle = this->manager_.OpenForWriting("/dev/full", "");
  ASSERT_NE(handle, nullptr);
  try {
    this->Write(*handle, "abc");
    FAIL() << "nothing was thrown";
  } catch (const DeviceError& error) {
    EXPECT_STREQ(error.what(), "Cannot write the file \"/dev/full\": No space left on device.");
  }
  EXPECT_EQ(handle->Offset(), 0U);
}

TYPED_TEST(FileHandleContractTest, TellsHowMuchOfAWriteTheDeviceTook) {
  const std::string former(200'000, 'a');
  const auto handle = this->OpenForWriting(former);
  const std::string bytes(400'000, 'b');
  {
    const TestSupport::FileSizeLimit limit(200'010);
    handle->Seek(100);
    EXPECT_THROW(this->Write(*handle, bytes), DeviceError);
    EXPECT_EQ(handle->Offset(), 200'010U);
    EXPECT_THROW(this->Write(*handle, bytes), DeviceError);
    EXPECT_EQ(handle->Offset(), 200'010U);
  }
  const std::string contents = former.substr(0, 100) + bytes.substr(0, 199'910);
  EXPECT_TRUE(ReadFileBytes(this->PathOf("file")) == contents);
}

TYPED_TEST(FileHandleContractTest, EndsWhereTheFileHasShrunkTo) {
  const auto handle = this->OpenForReading(std::string(300'000, 'a'));
  EXPECT_EQ(this->Read(*handle, 10), std::string(10, 'a'));
  fs::resize_file(this->PathOf("file"), 100'000);
  handle->Seek(99'990);
  EXPECT_EQ(this->Read(*handle, 1'000), std::string(10, 'a'));
  EXPECT_EQ(handle->Offset(), 100'000U);
  EXPECT_EQ(this->Read(*handle, 200'000), "");
  handle->Seek(250'000);
  EXPECT_EQ(this->Read(*handle, 10), "");
}

TYPED_TEST(FileHandleContractTest, ThrowsForAnOffsetThatNoFileReaches) {
  const auto handle = this->OpenForWriting("abc");
  handle->Seek(std::numeric_limits<std::uint64_t>::max());
  EXPECT_THROW(this->Write(*handle, "x"), DeviceError);
  EXPECT_EQ(handle->Offset(), std::numeric_limits<std::uint64_t>::max());
  EXPECT_EQ(ReadFileBytes(this->PathOf("file")), "abc");
}

TYPED_TEST(FileHandleContractTest, ThrowsAndStaysWhenTheDeviceCannotBeRead) {
  const auto handle = this->manager_.OpenForReading("/proc/self/mem");
  ASSERT_NE(handle, nullptr);
  for (const std::size_t count : {std::size_t{10}, std::size_t{100'000}}) {
    EXPECT_THROW(this->Read(*handle, count), DeviceError);
    EXPECT_EQ(handle->Offset(), 0U);
  }
}

TYPED_TEST(FileHandleContractTest, ReadsOnlyOrWritesOnly) {
  const auto reading = this->OpenForReading("abc");
  EXPECT_THROW(this->Write(*reading, "x"), DeviceError);
  const auto writing = this->manager_.OpenForWriting(this->PathOf("other"), "");
  EXPECT_THROW(this->Read(*writing, 1), DeviceError);
  EXPECT_EQ(ReadFileBytes(this->PathOf("file")), "abc");
}

TYPED_TEST(FileHandleContractTest, ThrowsForEverythingOnceClosed) {
  for (const auto& handle : {this->manager_.OpenForReading(this->WriteFile("a", "x")),
                             this->manager_.OpenForWriting(this->PathOf("b"), "")}) {
    handle->Close();
    char byte = 0;
    EXPECT_THROW(handle->Offset(), DeviceError);
    EXPECT_THROW(handle->Seek(0), DeviceError);
    EXPECT_THROW(handle->Read(&byte, 1), DeviceError);
    EXPECT_THROW(handle->Write(&byte, 1), DeviceError);
    EXPECT_THROW(handle->Close(), DeviceError);
  }
}

TYPED_TEST(FileHandleContractTest, HidesItsDescriptorFromChildProcesses) {
  for (const bool isWriting : {false, true}) {
    const auto handle = isWriting ? this->OpenForWriting("abc") : this->OpenForReading("abc");
    const auto descriptor = this->DescriptorOf(this->PathOf("file"));
    ASSERT_TRUE(descriptor) << isWriting;
    EXPECT_NE(::fcntl(*descriptor, F_GETFD) & FD_CLOEXEC, 0) << isWriting;
  }
}

TYPED_TEST(FileHandleContractTest, ClosesItsDescriptorWithCloseOrWithTheObject) {
  auto handle = this->OpenForReading("abc");
  handle->Close();
  EXPECT_FALSE(this->DescriptorOf(this->PathOf("file")));
  handle = this->OpenForWriting("abc");
  EXPECT_TRUE(this->DescriptorOf(this->PathOf("file")));
  handle.reset();
  EXPECT_FALSE(this->DescriptorOf(this->PathOf("file")));
}

}  // namespace
}  // namespace FileManagerContract
