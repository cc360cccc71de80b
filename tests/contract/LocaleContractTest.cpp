#include <locale>
#include <memory>
#include <optional>
#include <string>

#include <gmock/gmock.h>

#include "platform/linux/LinuxLocale.h"
#include "support/FakeLocale.h"
#include "support/ScopedEnvironment.h"

namespace {

// Each subject lets the user choose a locale.
class LinuxSubject {
 public:
  LinuxSubject() { Choose(""); }

  void Choose(const std::string& identifier) {
    language_.reset();
    language_ = std::make_unique<TestSupport::ScopedEnvironment>("LANG", identifier);
  }
  std::string Current() const { return locale_.CurrentIdentifier(); }

 private:
  Platform::LinuxLocale locale_;
  TestSupport::ScopedEnvironment all_{"LC_ALL", std::nullopt};
  TestSupport::ScopedEnvironment messages_{"LC_MESSAGES", std::nullopt};
  TestSupport::ScopedEnvironment characters_{"LC_CTYPE", std::nullopt};
  std::unique_ptr<TestSupport::ScopedEnvironment> language_;
};

class FakeSubject {
 public:
  void Choose(const std::string& identifier) { locale_.SetCurrentIdentifier(identifier); }
  std::string Current() const { return locale_.CurrentIdentifier(); }

 private:
  TestSupport::FakeLocale locale_;
};

template <class Subject>
class LocaleContractTest : public testing::Test {
 protected:
  Subject subject_;
};

using Subjects = testing::Types<LinuxSubject, FakeSubject>;
TYPED_TEST_SUITE(LocaleContractTest, Subjects);

TYPED_TEST(LocaleContractTest, GivesTheLocaleInForceNow) {
  this->subject_.Choose("de_CH.UTF-8");
  EXPECT_EQ(this->subject_.Current(), "de_CH.UTF-8");
  this->subject_.Choose("fr_FR");
  EXPECT_EQ(this->subject_.Current(), "fr_FR");
}

TYPED_TEST(LocaleContractTest, GivesAnIdentifierThatTheStandardLibraryTakes) {
  this->subject_.Choose("C.UTF-8");
  EXPECT_EQ(std::locale(this->subject_.Current()).name(), "C.UTF-8");
}

TYPED_TEST(LocaleContractTest, GivesNothingWhenTheUserChoseNone) {
  this->subject_.Choose("");
  EXPECT_EQ(this->subject_.Current(), "");
}

}  // namespace
