#include "PreviousInstallation.h"

#include <memory>

#include <QEXCore_iOS/Platform/Date.h>
#include <QEXCore_iOS/Platform/Host.h>

namespace Storefront {
namespace {

Platform::Value DateOf(double secondsSince1970) {
  return Platform::Value::FromObject(std::make_shared<Platform::Date>(secondsSince1970));
}

}  // namespace

void LeavePreviousInstallation() {
  const auto settings = Platform::Host::Current()->userDefaults->Standard();
  settings->SetObject("VRCK1", DateOf(1'400'000'000));
  settings->SetObject("VRCK2", "0.9.0");
  settings->SetObject("VRCK5", DateOf(1'500'000'000));
  settings->SetObject("VRCK6", 12);
  settings->SetObject("VRCK7", true);
  settings->SetObject("KRVMOBILE_PERSISTED_MID", "10023412341234123412341234");
  settings->SetObject("KRVMOBILE_KEY_PUSH_ENABLED", true);
}

}  // namespace Storefront
