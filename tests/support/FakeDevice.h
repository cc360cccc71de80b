#pragma once

#include <string>

#include "QEXCore_iOS/Platform/Device.h"
#include "support/Guarded.h"

namespace TestSupport {

class FakeDevice final : public Platform::Device {
 public:
  void SetSystemName(const std::string& name) { systemName_.Set(name); }
  void SetSystemVersion(const std::string& version) { systemVersion_.Set(version); }
  void SetModel(const std::string& model) { model_.Set(model); }
  void SetHardwareModel(const std::string& model) { hardwareModel_.Set(model); }

  std::string SystemName() const override { return systemName_.Get(); }
  std::string SystemVersion() const override { return systemVersion_.Get(); }
  std::string Model() const override { return model_.Get(); }
  std::string HardwareModel() const override { return hardwareModel_.Get(); }

 private:
  Guarded<std::string> systemName_{"Fake OS"};
  Guarded<std::string> systemVersion_{"12.1"};
  Guarded<std::string> model_{"Fake Phone"};
  Guarded<std::string> hardwareModel_{"Fake10,3"};
};

}  // namespace TestSupport
