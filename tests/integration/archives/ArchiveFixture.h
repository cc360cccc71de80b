#pragma once

#include <string>

#include <gtest/gtest.h>

#include "Program.h"
#include "Trees.h"
#include "VelmoraCore/SdkError.h"
#include "services/filesystem/NativeCompressedFileService.h"
#include "support/LogCapture.h"
#include "support/TemporaryDirectory.h"

// A directory in which an archive is made, unpacked by us into "ours" and by unzip into "theirs".
class ArchiveFixture : public testing::Test {
 protected:
  // Nothing, or the code and the message of the error.
  std::string Extract(const std::string& archive = "a.zip") const {
    try {
      const auto service = Velmora::CreateNativeCompressedFileService();
      EXPECT_TRUE(service->Extract(folder_.PathOf(archive), Velmora::CompressedFileType::Zip,
                                   folder_.PathOf("ours")));
      return {};
    } catch (const Velmora::SdkError& error) {
      return error.what();
    }
  }

  // Unpacks both ways and compares every byte.
  void ExpectSameAsUnzip(const std::string& archive = "a.zip") const {
    EXPECT_EQ(Extract(archive), "");
    RunShell("unzip -qq -o " + archive + " -d theirs", folder_.Path(), 1);
    EXPECT_EQ(DifferenceOf(Ours(), Theirs()), "");
    EXPECT_FALSE(Theirs().empty());
  }

  Tree Ours() const { return ReadTree(folder_.PathOf("ours")); }
  Tree Theirs() const { return ReadTree(folder_.PathOf("theirs")); }

  TestSupport::TemporaryDirectory folder_;
  TestSupport::LogCapture log_;
};
