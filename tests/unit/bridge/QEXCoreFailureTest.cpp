#include <string>
#include <tuple>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "BridgeFixture.h"
#include "PublicOperations.h"
#include "QEXCore_iOS/QEXCore.h"

namespace {

using testing::HasSubstr;
using TestSupport::LogLevel;
using TestSupport::PublicOperation;
using TestSupport::PublicOperations;
using TestSupport::RecordingCore;
using Thrown = RecordingCore::Thrown;

std::string ReasonOf(Thrown thrown) {
  switch (thrown) {
    case Thrown::SdkError:
      return "test.scripted: scripted";
    case Thrown::RuntimeError:
      return "scripted";
    case Thrown::Int:
      return "an exception of an unknown type";
  }
  return "?";
}

std::string NameOf(Thrown thrown) {
  switch (thrown) {
    case Thrown::SdkError:
      return "SdkError";
    case Thrown::RuntimeError:
      return "RuntimeError";
    case Thrown::Int:
      return "Int";
  }
  return "Other";
}

class QEXCoreFailure : public TestSupport::BridgeFixture,
                       public testing::WithParamInterface<std::tuple<PublicOperation, Thrown>> {
 protected:
  const PublicOperation& Operation() const { return std::get<0>(GetParam()); }
  Thrown What() const { return std::get<1>(GetParam()); }

  void CallWithOneErrorLine() {
    EXPECT_NO_THROW(Operation().call());
    log.ExpectLine(LogLevel::Error, "QEXCore", Operation().name + " failed: " + ReasonOf(What()));
  }
};

TEST_P(QEXCoreFailure, OfTheCoreEndsAsOneErrorLine) {
  RecordingCore::ThrowFrom(Operation().coreOperation, What());
  CallWithOneErrorLine();
  EXPECT_EQ(CountOf(Operation().coreOperation), 1);
}

TEST_P(QEXCoreFailure, ToMakeTheCoreEndsAsOneErrorLineAndTheNextCallTriesAgain) {
  RecordingCore::ThrowFrom("Create", What());
  CallWithOneErrorLine();
  EXPECT_EQ(CountOf(Operation().coreOperation), 0);

  RecordingCore::ThrowFromNothing();
  EXPECT_NO_THROW(Operation().call());
  EXPECT_EQ(CountOf("Create"), 2);
  EXPECT_EQ(CountOf(Operation().coreOperation), 1);
}

INSTANTIATE_TEST_SUITE_P(OfEveryOperation, QEXCoreFailure,
                         testing::Combine(testing::ValuesIn(PublicOperations()),
                                          testing::Values(Thrown::SdkError, Thrown::RuntimeError,
                                                          Thrown::Int)),
                         [](const auto& tested) {
                           return std::get<0>(tested.param).name + "_" +
                                  NameOf(std::get<1>(tested.param));
                         });

using QEXCoreMigrationFailure = TestSupport::BridgeFixture;

TEST_F(QEXCoreMigrationFailure, EndsAsOneErrorLineAndIsNotTriedAgain) {
  userDefaults->OnRead([](const std::string&) { throw std::runtime_error("device gone"); });
  EXPECT_NO_THROW(QEXCore::downloadRules());
  log.ExpectLine(LogLevel::Error, "QEXCore", "downloadRules failed: device gone");
  EXPECT_EQ(CountOf("DownloadRules"), 0);
  QEXCore::downloadRules();
  EXPECT_EQ(CountOf("DownloadRules"), 1);
}

}  // namespace
