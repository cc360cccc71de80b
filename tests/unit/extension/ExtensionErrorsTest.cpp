#include <string>

#include <gtest/gtest.h>

#include "extension/ExtensionErrors.h"

namespace {

using Velmora::GetQEXExtensionErrorFromErrorCodes;

int CodeOf(const std::string& coreCode) {
  return static_cast<int>(GetQEXExtensionErrorFromErrorCodes(coreCode));
}

TEST(ExtensionErrors, EveryCodeOfTheTableHasItsNumber) {
  EXPECT_EQ(CodeOf("external_module.bad_module_name"), 1);
  EXPECT_EQ(CodeOf("external_module.dup_module_name"), 2);
  EXPECT_EQ(CodeOf("external_module.event_type_not_supported"), 3);
  EXPECT_EQ(CodeOf("external_module.event_source_not_supported"), 4);
  EXPECT_EQ(CodeOf("external_module.event_data_not_supported"), 5);
  EXPECT_EQ(CodeOf("external_module.event_was_null"), 7);
}

TEST(ExtensionErrors, AnythingElseIsUnknown) {
  for (const char* code :
       {"", "external_module", "external_module.event_was_null ", " external_module.event_was_null",
        "External_Module.Event_Was_Null", "external_module.listener_was_null", "std.exception"}) {
    EXPECT_EQ(CodeOf(code), 0) << code;
  }
  EXPECT_EQ(CodeOf(std::string("external_module.event_was_null\0", 31)), 0);
  EXPECT_EQ(CodeOf(std::string(10'000'000, 'x')), 0);
}

TEST(ExtensionErrors, ThePublicErrorHasDomainAndCodeAndNoMore) {
  const Platform::Error error =
      Velmora::MakeExtensionError(QEXExtensionError::classIsNotAnExtension);
  EXPECT_EQ(error.Domain(), "com.velmora.module_errors");
  EXPECT_EQ(error.Code(), 6);
  EXPECT_EQ(error, Platform::Error("com.velmora.module_errors", 6));
}

TEST(ExtensionErrors, StoringNeedsAPlace) {
  Velmora::StoreExtensionError(QEXExtensionError::eventWasNull, nullptr);
  Platform::Error error;
  Velmora::StoreExtensionError(QEXExtensionError::eventWasNull, &error);
  EXPECT_EQ(error.Code(), 7);
}

}  // namespace
