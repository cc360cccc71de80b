#include <optional>
#include <string>

#include <gmock/gmock.h>

#include "platform/linux/LinuxLocale.h"
#include "support/ScopedEnvironment.h"

namespace {

using Setting = std::optional<std::string>;

std::string IdentifierWith(const Setting& all, const Setting& messages, const Setting& lang,
                           const Setting& characters) {
  const TestSupport::ScopedEnvironment first("LC_ALL", all);
  const TestSupport::ScopedEnvironment second("LC_MESSAGES", messages);
  const TestSupport::ScopedEnvironment third("LANG", lang);
  const TestSupport::ScopedEnvironment fourth("LC_CTYPE", characters);
  return Platform::LinuxLocale().CurrentIdentifier();
}

TEST(LinuxLocale, AsksTheEnvironmentInTheOrderOfTheStandard) {
  EXPECT_EQ(IdentifierWith("de_DE", "fr_FR", "it_IT", "C"), "de_DE");
  EXPECT_EQ(IdentifierWith({}, "fr_FR", "it_IT", "C"), "fr_FR");
  EXPECT_EQ(IdentifierWith({}, {}, "it_IT.UTF-8", "C"), "it_IT.UTF-8");
  EXPECT_EQ(IdentifierWith({}, {}, {}, "C.UTF-8"), "C.UTF-8");
  EXPECT_EQ(IdentifierWith({}, {}, {}, {}), "");
}

TEST(LinuxLocale, TakesAnEmptyVariableForNone) {
  EXPECT_EQ(IdentifierWith("", "", "it_IT", {}), "it_IT");
  EXPECT_EQ(IdentifierWith("", "", "", ""), "");
}

}  // namespace
