#include <fstream>
#include <string>

#include <fcntl.h>
#include <gmock/gmock.h>

#include "platform/linux/LinuxFileHandle.h"
#include "support/TemporaryDirectory.h"

namespace {

using Platform::FileDescriptor;
using Platform::LinuxFileHandle;

// Whether a read was served from what was read ahead shows when the file is changed behind the
// handle's back.
class LinuxFileHandleTest : public testing::Test {
 protected:
  static constexpr std::size_t kLength = 3 * LinuxFileHandle::kReadAhead;

  LinuxFileHandleTest()
      : path_(folder_.WriteFile("file", std::string(kLength, 'a'))),
        handle_(FileDescriptor(::open(path_.c_str(), O_RDWR | O_CLOEXEC)), path_) {}

  char ReadOne() {
    char byte = '?';
    EXPECT_EQ(handle_.Read(&byte, 1), 1U);
    return byte;
  }

  void FillFileWith(char byte) { folder_.WriteFile("file", std::string(kLength, byte)); }

  TestSupport::TemporaryDirectory folder_;
  std::string path_;
  LinuxFileHandle handle_;
};

TEST_F(LinuxFileHandleTest, ServesSmallReadsFromWhatItReadAhead) {
  EXPECT_EQ(ReadOne(), 'a');
  FillFileWith('b');
  EXPECT_EQ(ReadOne(), 'a');
  handle_.Seek(LinuxFileHandle::kReadAhead - 1);
  EXPECT_EQ(ReadOne(), 'a');
  EXPECT_EQ(ReadOne(), 'b');
}

TEST_F(LinuxFileHandleTest, KeepsWhatItReadAheadOverSeeksWithin) {
  EXPECT_EQ(ReadOne(), 'a');
  FillFileWith('b');
  handle_.Seek(1000);
  EXPECT_EQ(ReadOne(), 'a');
  handle_.Seek(0);
  EXPECT_EQ(ReadOne(), 'a');
}

TEST_F(LinuxFileHandleTest, ForgetsWhatItReadAheadAtASeekBeyondIt) {
  EXPECT_EQ(ReadOne(), 'a');
  FillFileWith('b');
  handle_.Seek(LinuxFileHandle::kReadAhead + 1);
  handle_.Seek(0);
  EXPECT_EQ(ReadOne(), 'b');
}

TEST_F(LinuxFileHandleTest, ForgetsWhatItReadAheadAtASeekBeforeIt) {
  handle_.Seek(1000);
  EXPECT_EQ(ReadOne(), 'a');
  FillFileWith('b');
  handle_.Seek(999);
  handle_.Seek(1000);
  EXPECT_EQ(ReadOne(), 'b');
}

TEST_F(LinuxFileHandleTest, ForgetsWhatItReadAheadAtAWrite) {
  EXPECT_EQ(ReadOne(), 'a');
  FillFileWith('b');
  handle_.Write("c", 1);
  EXPECT_EQ(ReadOne(), 'b');
  handle_.Seek(1);
  EXPECT_EQ(ReadOne(), 'c');
}

TEST_F(LinuxFileHandleTest, ReadsLargePiecesFromTheFileItself) {
  EXPECT_EQ(ReadOne(), 'a');
  FillFileWith('b');
  std::string text(2 * LinuxFileHandle::kReadAhead, '?');
  EXPECT_EQ(handle_.Read(text.data(), text.size()), text.size());
  EXPECT_EQ(text.find('b'), LinuxFileHandle::kReadAhead - 1);
}

TEST_F(LinuxFileHandleTest, EndsWhereTheFileWasCut) {
  EXPECT_EQ(ReadOne(), 'a');
  folder_.WriteFile("file", "x");
  std::string text(kLength, '?');
  handle_.Seek(LinuxFileHandle::kReadAhead);
  EXPECT_EQ(handle_.Read(text.data(), text.size()), 0U);
}

}  // namespace
