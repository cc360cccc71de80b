#include <memory>
#include <optional>
#include <stdexcept>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "QEXCore_iOS/QEXExtensionApi.h"
#include "VelmoraCore/SdkError.h"
#include "extension/ExternalModuleInterfaceWrapper.h"
#include "support/FakeHost.h"
#include "support/LogCapture.h"
#include "support/RecordingModuleServices.h"
#include "support/ScriptedExtension.h"

namespace {

using Platform::ClassOf;
using testing::ElementsAre;
using testing::IsEmpty;
using TestSupport::ExtensionScript;
using TestSupport::RecordingModuleServices;
using Extension = TestSupport::ScriptedExtension<>;
using Module = std::shared_ptr<Velmora::ExternalModuleInterface>;

class ExternalModuleInterfaceWrapperTest : public testing::Test {
 protected:
  ExternalModuleInterfaceWrapperTest() { Extension::Reset({}); }
  ~ExternalModuleInterfaceWrapperTest() override {
    Extension::Reset({});
    module = nullptr;
    EXPECT_EQ(TestSupport::liveExtensions, 0);
  }

  void MakeModule(ExtensionScript script = {}) {
    Extension::Reset(std::move(script));
    module = Velmora::CreateExternalModuleInterface(ClassOf<Extension>());
  }
  static Velmora::SdkError ErrorOf(const std::string& code) {
    return {code, "scripted", Velmora::DebugInfo("test", 1)};
  }

  TestSupport::LogCapture log;
  const std::shared_ptr<RecordingModuleServices> services =
      std::make_shared<RecordingModuleServices>();
  Module module;
};

TEST_F(ExternalModuleInterfaceWrapperTest, NameAndVersionComeFromAnInstanceThatWasNotInitialised) {
  MakeModule();
  EXPECT_EQ(TestSupport::liveExtensions, 1);
  EXPECT_EQ(module->GetModuleName(), "test.extension");
  EXPECT_EQ(module->GetModuleVersion(), "1.0.0");
  EXPECT_THAT(Extension::calls.Get(), ElementsAre("name"));
}

TEST_F(ExternalModuleInterfaceWrapperTest, AnAbsentNameIsEmpty) {
  MakeModule({.name = std::nullopt});
  EXPECT_EQ(module->GetModuleName(), "");
  MakeModule({.name = std::string("na\0me", 5)});
  EXPECT_EQ(module->GetModuleName(), "na");
}

TEST_F(ExternalModuleInterfaceWrapperTest, InitRunsOnRegistrationWithTheApiInPlace) {
  std::shared_ptr<QEXExtensionApi> seen;
  MakeModule({.onInit = [&seen](QEXExtension& extension) { seen = extension.api(); }});
  module->OnRegister(services);
  ASSERT_NE(seen, nullptr);
  EXPECT_TRUE(seen->registerWildcardListener(ClassOf<TestSupport::ScriptedListener<>>(), nullptr));
  ASSERT_EQ(services->Calls().size(), 1U);
  EXPECT_EQ(TestSupport::liveExtensions, 1) << "it is the instance that told its name";
  services->Calls()[0].listener->OnUnregistered();
  module->OnUnregister();
}

TEST_F(ExternalModuleInterfaceWrapperTest, OnUnregisterTellsTheExtensionAndLetsItGo) {
  std::shared_ptr<QEXExtension> kept;
  MakeModule({.onInit = [&kept](QEXExtension& extension) { kept = extension.shared_from_this(); }});
  module->OnRegister(services);
  EXPECT_NE(kept->api(), nullptr);
  module->OnUnregister();
  EXPECT_THAT(Extension::calls.Get(), ElementsAre("init", "unregister"));
  EXPECT_EQ(kept->api(), nullptr);
  EXPECT_EQ(kept.use_count(), 1);
  EXPECT_EQ(services.use_count(), 1);
}

TEST_F(ExternalModuleInterfaceWrapperTest, NothingIsLeftWhenAnOverrideForgetsTheBaseClass) {
  MakeModule({.callsBaseOnUnregister = false});
  module->OnRegister(services);
  module->OnUnregister();
  EXPECT_EQ(TestSupport::liveExtensions, 0);
  EXPECT_EQ(services.use_count(), 1);
}

TEST_F(ExternalModuleInterfaceWrapperTest, NothingIsLeftWhenOnUnregisterThrows) {
  MakeModule({.onUnregister = [](QEXExtension&) { throw std::runtime_error("a bug"); }});
  module->OnRegister(services);
  EXPECT_THROW(module->OnUnregister(), std::runtime_error);
  EXPECT_EQ(TestSupport::liveExtensions, 0);
  Velmora::SdkError error = ErrorOf("std.exception");
  module->OnUnexpectedError(error);
  EXPECT_EQ(Extension::calls.Get().back(), "unregister") << "nothing follows the last call";
}

TEST_F(ExternalModuleInterfaceWrapperTest, AnExtensionThatInitialisesToNothingLeaves) {
  MakeModule({.initGivesNothing = true});
  module->OnRegister(services);
  EXPECT_EQ(TestSupport::liveExtensions, 0);
  ASSERT_EQ(services->Calls().size(), 1U);
  EXPECT_EQ(services->Calls()[0].operation, "UnregisterExtension");
  module->OnUnregister();
}

TEST_F(ExternalModuleInterfaceWrapperTest, AnInitThatThrowsLeavesTheExtensionInPlace) {
  MakeModule({.onInit = [](QEXExtension&) { throw std::runtime_error("a bug"); }});
  EXPECT_THROW(module->OnRegister(services), std::runtime_error);
  Velmora::SdkError error = ErrorOf("std.exception");
  module->OnUnexpectedError(error);
  module->OnUnregister();
  EXPECT_THAT(Extension::calls.Get(),
              ElementsAre("init", "error com.velmora.module_errors 0", "unregister"));
}

TEST_F(ExternalModuleInterfaceWrapperTest, ErrorsReachTheExtensionWithTheirPublicCode) {
  MakeModule();
  module->OnRegister(services);
  for (const char* code : {"external_module.event_data_not_supported", "anything"}) {
    Velmora::SdkError error = ErrorOf(code);
    module->OnUnexpectedError(error);
  }
  module->OnUnregister();
  EXPECT_THAT(Extension::calls.Get(),
              ElementsAre("init", "error com.velmora.module_errors 5",
                          "error com.velmora.module_errors 0", "unregister"));
}

TEST_F(ExternalModuleInterfaceWrapperTest, NothingHappensOnceTheInstanceHasGone) {
  MakeModule();
  module->OnRegister(services);
  module->OnUnregister();
  Extension::Reset({});
  module->OnUnregister();
  module->OnRegister(services);
  Velmora::SdkError error = ErrorOf("anything");
  module->OnUnexpectedError(error);
  EXPECT_EQ(module->GetModuleName(), "");
  EXPECT_EQ(module->GetModuleVersion(), "");
  EXPECT_THAT(Extension::calls.Get(), IsEmpty());
}

TEST_F(ExternalModuleInterfaceWrapperTest, AClassThatGivesNoInstanceHasNoName) {
  class NoDefault : public QEXExtension {
   public:
    explicit NoDefault(int /*argument*/) {}
  };
  for (const Platform::Class& extensionClass :
       {ClassOf<NoDefault>(), ClassOf<std::string>(), Platform::Class()}) {
    module = Velmora::CreateExternalModuleInterface(extensionClass);
    EXPECT_EQ(module->GetModuleName(), "");
    module->OnRegister(services);
    module->OnUnregister();
  }
  EXPECT_THAT(services->Calls(), IsEmpty());
}

}  // namespace
