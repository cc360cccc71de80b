#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>

#include <gmock/gmock.h>

#include "QEXCore_iOS/Platform/Host.h"
#include "VelmoraCore/SdkError.h"
#include "VelmoraCore/Variant.h"
#include "support/FakeHost.h"
#include "support/LogCapture.h"

namespace Velmora {

// A test of the JSON service, during which nothing is logged.
class JsonFixture : public testing::Test {
 protected:
  // The error of a call that must fail with an SdkError from `sourceLocation`.
  static std::pair<std::string, std::string> CodeAndMessage(const std::string& sourceLocation,
                                                            const std::function<void()>& call) {
    try {
      call();
    } catch (const SdkError& error) {
      EXPECT_EQ(error.GetDebugInfo().GetSourceLocation(), sourceLocation);
      EXPECT_GT(error.GetDebugInfo().GetLine(), 0);
      return {error.GetCode(), error.GetMessage()};
    }
    ADD_FAILURE() << "nothing was thrown";
    return {};
  }

  static std::string Code(const std::string& sourceLocation, const std::function<void()>& call) {
    return CodeAndMessage(sourceLocation, call).first;
  }

  // What the platform's parser says of the text.
  std::string ParserDescription(const std::string& text) const {
    Platform::Error error;
    EXPECT_TRUE(host_.Copy().jsonSerialization->Parse(text, &error).IsAbsent());
    return error.LocalizedDescription();
  }

 private:
  const TestSupport::FakeHost host_;
  const TestSupport::LogCapture log_;
};

// Maps and vectors as one variant, to be compared as such.
inline bool AreEqual(const VariantMap& left, const VariantMap& right) {
  return Variant::AreEqual(Variant::FromVariantMap(left), Variant::FromVariantMap(right));
}

inline bool AreEqual(const VariantVector& left, const VariantVector& right) {
  return Variant::AreEqual(Variant::FromVariantVector(left), Variant::FromVariantVector(right));
}

}  // namespace Velmora
