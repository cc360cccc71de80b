#pragma once

#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "VelmoraCore/Variant.h"
#include "base/JsonToVariant.h"
#include "services/json/NativeJsonUtilityService.h"
#include "support/FakeHost.h"
#include "support/LogCapture.h"

// Reads JSON texts as the core's modules do.
class JsonFixture : public testing::Test {
 protected:
  static Velmora::VariantMap Map(const std::string& json) {
    return Velmora::ToVariantMap(Velmora::CreateNativeJsonUtilityService()->CreateJsonObject(json));
  }
  static std::shared_ptr<Velmora::Variant> Value(const std::string& json) {
    return Map("{\"value\": " + json + "}").at("value");
  }

  TestSupport::FakeHost host;
  TestSupport::LogCapture log;
};
