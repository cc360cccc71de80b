#include <string>

#include <gtest/gtest.h>

#include "platform/linux/LinuxDevice.h"
#include "support/FakeDevice.h"
#include "support/TemporaryDirectory.h"

namespace {

struct Texts {
  std::string systemName;
  std::string systemVersion;
  std::string model;
  std::string hardwareModel;
};

// Each subject can be made to describe itself.
class LinuxSubject {
 public:
  void Be(const Texts& texts) {
    folder_.WriteFile("etc/os-release", "NAME=\"" + texts.systemName +
                                            "\"\nVERSION_ID=" + texts.systemVersion + "\n");
    folder_.WriteFile("proc/device-tree/model", texts.model + '\0');
    folder_.WriteFile("proc/device-tree/compatible", texts.hardwareModel + '\0');
  }
  const Platform::Device& Device() const { return device_; }

 private:
  TestSupport::TemporaryDirectory folder_;
  Platform::LinuxDevice device_{folder_.Path()};
};

class FakeSubject {
 public:
  void Be(const Texts& texts) {
    device_.SetSystemName(texts.systemName);
    device_.SetSystemVersion(texts.systemVersion);
    device_.SetModel(texts.model);
    device_.SetHardwareModel(texts.hardwareModel);
  }
  const Platform::Device& Device() const { return device_; }

 private:
  TestSupport::FakeDevice device_;
};

template <class Subject>
class DeviceContractTest : public testing::Test {
 protected:
  Subject subject_;
};

using Subjects = testing::Types<LinuxSubject, FakeSubject>;
TYPED_TEST_SUITE(DeviceContractTest, Subjects);

TYPED_TEST(DeviceContractTest, DescribesSystemAndDevice) {
  this->subject_.Be({"Some OS", "12.1", "Some Board", "maker,board-2"});
  EXPECT_EQ(this->subject_.Device().SystemName(), "Some OS");
  EXPECT_EQ(this->subject_.Device().SystemVersion(), "12.1");
  EXPECT_EQ(this->subject_.Device().Model(), "Some Board");
  EXPECT_EQ(this->subject_.Device().HardwareModel(), "maker,board-2");
}

TYPED_TEST(DeviceContractTest, GivesAnEmptyTextForAVersionThatIsNotKnown) {
  this->subject_.Be({"Some OS", "", "Some Board", "maker,board-2"});
  EXPECT_EQ(this->subject_.Device().SystemVersion(), "");
}

}  // namespace
