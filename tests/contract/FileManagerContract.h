#pragma once

#include <string>

#include <gmock/gmock.h>

#include "platform/linux/LinuxFileManager.h"
#include "support/ConfinedFileManager.h"
#include "support/FakeFileManager.h"
#include "support/TemporaryDirectory.h"

namespace FileManagerContract {

using Implementations = testing::Types<Platform::LinuxFileManager, TestSupport::FakeFileManager,
                                       TestSupport::ConfinedFileManager>;

// A file manager and an empty directory to work in.
template <class Implementation>
class Fixture : public testing::Test {
 protected:
  std::string PathOf(const std::string& name) const { return folder_.PathOf(name); }
  std::string WriteFile(const std::string& name, const std::string& contents) const {
    return folder_.WriteFile(name, contents);
  }

  // Paths that the system cannot even be asked about.
  static std::vector<std::string> ImpossiblePaths() {
    return {"", std::string("/tmp\0/x", 7), "/" + std::string(300, 'n'), std::string(5000, 'p'),
            std::string(10'000'000, '/')};
  }

  TestSupport::TemporaryDirectory folder_;
  Implementation manager_;
};

}  // namespace FileManagerContract
