#include <filesystem>

#include <gtest/gtest.h>

#include "QEXCore_iOS/Platform/DeviceError.h"
#include "support/ConfinedFileManager.h"
#include "support/TemporaryDirectory.h"

namespace {

using TestSupport::ConfinedFileManager;
using TestSupport::TemporaryDirectory;

TEST(ConfinedFileManager, ChangesNothingOutsideItsDirectory) {
  const TemporaryDirectory folder;
  folder.WriteFile("inside/old", "x");
  const std::string outside = folder.WriteFile("outside", "x");
  ConfinedFileManager manager(folder.PathOf("inside"));
  for (const std::string& path :
       {outside, folder.PathOf("inside/../outside"), folder.PathOf("inside/a/../../outside"),
        folder.PathOf("inside-not"), folder.Path().string(), std::string("relative"),
        std::string()}) {
    EXPECT_EQ(manager.OpenForWriting(path, ""), nullptr) << path;
    EXPECT_FALSE(manager.IsWritable(path));
    Platform::Error error;
    EXPECT_FALSE(manager.CreateDirectory(path, &error));
    EXPECT_NE(error, Platform::Error());
    EXPECT_FALSE(manager.RemoveItem(path, nullptr));
  }
  EXPECT_EQ(TestSupport::ReadFileBytes(outside), "x");
  EXPECT_NE(manager.OpenForWriting(folder.PathOf("inside/new"), ""), nullptr);
  EXPECT_TRUE(manager.CreateDirectory(folder.PathOf("inside/a/../b"), nullptr));
  EXPECT_TRUE(manager.RemoveItem(folder.PathOf("inside"), nullptr));
}

TEST(ConfinedFileManager, WritesNoMoreThanItMay) {
  const TemporaryDirectory folder;
  ConfinedFileManager manager(folder.Path(), 5);
  const auto handle = manager.OpenForWriting(folder.PathOf("file"), "");
  handle->Write("abc", 3);
  EXPECT_EQ(manager.BytesToWrite(), 2U);
  EXPECT_THROW(handle->Write("def", 3), Platform::DeviceError);
  EXPECT_EQ(TestSupport::ReadFileBytes(folder.PathOf("file")), "abcde");
}

}  // namespace
