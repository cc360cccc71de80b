#include <string>

#include <gtest/gtest.h>
#include <sys/utsname.h>

#include "platform/linux/LinuxDevice.h"
#include "support/TemporaryDirectory.h"

namespace {

std::string Machine() {
  struct utsname names = {};
  return ::uname(&names) == 0 ? names.machine : "";
}

// A device whose system files the test writes.
class LinuxDeviceTest : public testing::Test {
 protected:
  void WriteDmi(const std::string& name, const std::string& text) const {
    folder_.WriteFile("sys/class/dmi/id/" + name, text);
  }

  const TestSupport::TemporaryDirectory folder_;
  const Platform::LinuxDevice device_{folder_.Path()};
};

TEST_F(LinuxDeviceTest, TakesNameAndVersionFromOsRelease) {
  folder_.WriteFile("etc/os-release", "NAME=\"Debian GNU/Linux\"\nVERSION_ID=\"12.4\"\n");
  EXPECT_EQ(device_.SystemName(), "Debian GNU/Linux");
  EXPECT_EQ(device_.SystemVersion(), "12.4");
}

TEST_F(LinuxDeviceTest, IsLinuxWithoutAVersionWhereOsReleaseIsMissing) {
  EXPECT_EQ(device_.SystemName(), "Linux");
  EXPECT_EQ(device_.SystemVersion(), "");
}

TEST_F(LinuxDeviceTest, TakesTheProductFamilyForTheModel) {
  WriteDmi("product_family", "ThinkBook 14\n");
  WriteDmi("product_name", "20SL\n");
  EXPECT_EQ(device_.Model(), "ThinkBook 14");
  EXPECT_EQ(device_.HardwareModel(), "20SL," + Machine());
}

TEST_F(LinuxDeviceTest, TakesTheProductNameWhereTheFamilyIsMissing) {
  WriteDmi("product_family", "\n");
  WriteDmi("product_name", "20SL\n");
  EXPECT_EQ(device_.Model(), "20SL");
}

TEST_F(LinuxDeviceTest, SkipsWhatBoardMakersLeaveUnfilled) {
  for (const char* text :
       {"To be filled by O.E.M.", "To Be Filled By O.E.M.", "System Product Name", "Default string",
        "Not Specified", "None", "O.E.M.", "Unknown", " Default string \n"}) {
    WriteDmi("product_family", text);
    WriteDmi("product_name", text);
    EXPECT_EQ(device_.Model(), "Linux device") << text;
    EXPECT_EQ(device_.HardwareModel(), Machine()) << text;
  }
}

TEST_F(LinuxDeviceTest, TakesModelAndCompatibleNameFromTheDeviceTree) {
  folder_.WriteFile("proc/device-tree/model", std::string("Some Board 4\0", 13));
  folder_.WriteFile("proc/device-tree/compatible", std::string("maker,4-b\0maker,soc\0", 20));
  EXPECT_EQ(device_.Model(), "Some Board 4");
  EXPECT_EQ(device_.HardwareModel(), "maker,4-b");
}

TEST_F(LinuxDeviceTest, IsALinuxDeviceWhenNothingIsKnown) {
  EXPECT_EQ(device_.Model(), "Linux device");
  EXPECT_EQ(device_.HardwareModel(), Machine());
  EXPECT_NE(device_.HardwareModel(), "");
}

TEST_F(LinuxDeviceTest, TakesNoHostileTexts) {
  for (const std::string& text :
       {std::string("a\r\nInjected: yes"), std::string("\xFF\xFE"), std::string(200, 'x'),
        std::string(10'000'000, 'x'), std::string("\0x", 2), std::string("a\x1b[31m")}) {
    WriteDmi("product_family", text);
    WriteDmi("product_name", text);
    folder_.WriteFile("proc/device-tree/model", text);
    folder_.WriteFile("proc/device-tree/compatible", text);
    EXPECT_EQ(device_.Model(), "Linux device") << text.substr(0, 10);
    EXPECT_EQ(device_.HardwareModel(), Machine()) << text.substr(0, 10);
  }
}

TEST(LinuxDevice, DescribesTheMachineThatRunsTheTest) {
  const Platform::LinuxDevice device;
  EXPECT_NE(device.SystemName(), "");
  EXPECT_NE(device.Model(), "");
  EXPECT_NE(device.HardwareModel(), "");
}

}  // namespace
