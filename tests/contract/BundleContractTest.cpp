#include <filesystem>
#include <string>

#include <gtest/gtest.h>

#include "platform/linux/LinuxBundle.h"
#include "support/FakeBundle.h"
#include "support/TemporaryDirectory.h"

namespace {

using Platform::Value;

// Each subject is a bundle with the text "Shop" under "CFBundleName", the number 7 under "Count",
// and one resource, "rules.json", of the contents "{}".
class LinuxSubject {
 public:
  LinuxSubject() {
    folder_.WriteFile("Info.plist",
                      "<plist version='1.0'><dict>"
                      "<key>CFBundleName</key><string>Shop</string>"
                      "<key>Count</key><integer>7</integer>"
                      "</dict></plist>");
    folder_.WriteFile("rules.json", "{}");
  }
  const Platform::Bundle& Bundle() const { return bundle_; }

 private:
  TestSupport::TemporaryDirectory folder_;
  Platform::LinuxBundle bundle_{folder_.PathOf("shop"), folder_.Path()};
};

class FakeSubject {
 public:
  FakeSubject() {
    bundle_.SetInfo("CFBundleName", "Shop");
    bundle_.SetInfo("Count", 7);
    bundle_.AddResource("rules.json", "{}");
  }
  const Platform::Bundle& Bundle() const { return bundle_; }

 private:
  TestSupport::FakeBundle bundle_;
};

template <class Subject>
class BundleContractTest : public testing::Test {
 protected:
  const Platform::Bundle& Bundle() const { return subject_.Bundle(); }

  Subject subject_;
};

using Subjects = testing::Types<LinuxSubject, FakeSubject>;
TYPED_TEST_SUITE(BundleContractTest, Subjects);

TYPED_TEST(BundleContractTest, KnowsItsPaths) {
  EXPECT_TRUE(std::filesystem::path(this->Bundle().BundlePath()).is_absolute());
  EXPECT_TRUE(std::filesystem::path(this->Bundle().ExecutablePath()).is_absolute());
}

TYPED_TEST(BundleContractTest, GivesValuesOfTheInformationDictionary) {
  EXPECT_EQ(this->Bundle().ObjectForInfoDictionaryKey("CFBundleName"), Value("Shop"));
  EXPECT_EQ(this->Bundle().ObjectForInfoDictionaryKey("Count"), Value(7));
}

TYPED_TEST(BundleContractTest, GivesAnAbsentValueForAMissingKey) {
  EXPECT_TRUE(this->Bundle().ObjectForInfoDictionaryKey("cfbundlename").IsAbsent());
  EXPECT_TRUE(this->Bundle().ObjectForInfoDictionaryKey("").IsAbsent());
  EXPECT_TRUE(this->Bundle().ObjectForInfoDictionaryKey("\xFF").IsAbsent());
}

TYPED_TEST(BundleContractTest, FindsAResourceByItsExactName) {
  const std::string path = this->Bundle().PathForResource("rules.json");
  EXPECT_TRUE(std::filesystem::path(path).is_absolute());
  EXPECT_EQ(TestSupport::ReadFileBytes(path), "{}");
}

TYPED_TEST(BundleContractTest, FindsNothingUnderAnotherName) {
  for (const std::string& name :
       {std::string(), std::string("rules"), std::string("RULES.JSON"), std::string("rules.json "),
        std::string("rules.json\0", 11), std::string("\xFF"), std::string(100'000, 'x')}) {
    EXPECT_EQ(this->Bundle().PathForResource(name), "") << name.substr(0, 20);
  }
}

TYPED_TEST(BundleContractTest, FindsNothingOutsideTheFolderOfResources) {
  for (const char* name : {"/etc/passwd", "../../../../../../etc/passwd", "..", ".", "/",
                           "./rules.json", "x/../rules.json"}) {
    EXPECT_EQ(this->Bundle().PathForResource(name), "") << name;
  }
}

}  // namespace
