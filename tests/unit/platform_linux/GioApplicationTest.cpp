#include <filesystem>
#include <memory>
#include <string>

#include <gtest/gtest.h>
#include <stdlib.h>

#include "platform/linux/GioApplication.h"
#include "support/TemporaryDirectory.h"
#include "support/WaitUntil.h"

namespace {

// A user with one program, which opens URLs of the scheme "qex-test" by noting them. GLib reads
// where such programs are registered once for the process.
class GioApplicationTest : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    folder = new TestSupport::TemporaryDirectory;
    const std::string script =
        folder->WriteFile("open.sh", "printf %s \"$1\" > " + folder->PathOf("url.new") + "\nmv " +
                                         folder->PathOf("url.new") + " " + Opened() + "\n");
    folder->WriteFile("data/applications/qex-test.desktop",
                      "[Desktop Entry]\nType=Application\nName=Opener\nExec=/bin/sh " + script +
                          " %u\nMimeType=x-scheme-handler/qex-test;\n");
    folder->WriteFile("config/mimeapps.list",
                      "[Default Applications]\nx-scheme-handler/qex-test=qex-test.desktop\n");
    ::setenv("XDG_DATA_HOME", folder->PathOf("data").c_str(), 1);
    ::setenv("XDG_DATA_DIRS", folder->PathOf("none").c_str(), 1);
    ::setenv("XDG_CONFIG_HOME", folder->PathOf("config").c_str(), 1);
    ::setenv("XDG_CONFIG_DIRS", folder->PathOf("none").c_str(), 1);
  }

  static void TearDownTestSuite() { delete folder; }

  static std::string Opened() { return folder->PathOf("url"); }

  static TestSupport::TemporaryDirectory* folder;
  Platform::GioApplication application_;
};

TestSupport::TemporaryDirectory* GioApplicationTest::folder = nullptr;

TEST_F(GioApplicationTest, HasTheProgramOfTheSchemeOpenTheUrl) {
  const std::string url = "qex-test:hello?a=b%20c&d='$HOME'";
  EXPECT_TRUE(application_.OpenUrl(url));
  EXPECT_TRUE(TestSupport::WaitUntil([] { return std::filesystem::exists(Opened()); }));
  EXPECT_EQ(TestSupport::ReadFileBytes(Opened()), url);
}

TEST_F(GioApplicationTest, TellsWhenNothingOpensTheScheme) {
  EXPECT_FALSE(application_.OpenUrl("qex-unknown:hello"));
  EXPECT_FALSE(application_.OpenUrl("qex-test-2:hello"));
}

TEST_F(GioApplicationTest, RefusesTextsThatAreNoUrl) {
  EXPECT_FALSE(application_.OpenUrl("qex-test"));
  EXPECT_FALSE(application_.OpenUrl("/etc/passwd"));
  EXPECT_FALSE(application_.OpenUrl("qex-test:\xFF"));
}

TEST_F(GioApplicationTest, HasNoWindowAndIsActive) {
  EXPECT_EQ(application_.State(), Platform::ApplicationState::Active);
  EXPECT_EQ(application_.KeyWindow(), nullptr);
  EXPECT_TRUE(application_.Windows().empty());
}

}  // namespace
