#pragma once

#include <string>

#include "QEXCore_iOS/Platform/Locale.h"
#include "support/Guarded.h"

namespace TestSupport {

class FakeLocale final : public Platform::Locale {
 public:
  void SetCurrentIdentifier(const std::string& identifier) { identifier_.Set(identifier); }

  std::string CurrentIdentifier() const override { return identifier_.Get(); }

 private:
  Guarded<std::string> identifier_{"C.UTF-8"};
};

}  // namespace TestSupport
