#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "QEXCore_iOS/Platform/SystemLog.h"
#include "QEXCore_iOS/Platform/UserDefaults.h"
#include "support/Guarded.h"

namespace TestSupport {

// User defaults that live in memory and go with the object.
class FakeUserDefaults final : public Platform::UserDefaults {
 public:
  // A value that is refused is told to `systemLog`; without one it fails the test.
  explicit FakeUserDefaults(std::shared_ptr<Platform::SystemLog> systemLog = nullptr)
      : systemLog_(std::move(systemLog)) {}

  Platform::Value ObjectForKey(const std::string& key) const override;
  void SetObject(const std::string& key, const Platform::Value& value) override;
  void RemoveObject(const std::string& key) override;
  void RemoveObjectsWithPrefix(const std::string& prefix) override;
  std::vector<std::string> KeysWithPrefix(const std::string& prefix) const override;

 private:
  const std::shared_ptr<Platform::SystemLog> systemLog_;
  Guarded<std::map<std::string, Platform::Value>> values_;
};

class FakeUserDefaultsProvider final : public Platform::UserDefaultsProvider {
 public:
  // Refused values are told to `systemLog`; without one they fail the test.
  explicit FakeUserDefaultsProvider(std::shared_ptr<Platform::SystemLog> systemLog = nullptr)
      : systemLog_(std::move(systemLog)) {}

  // False: a platform without suites.
  void SetSupportsSuites(bool supports) { supportsSuites_.Set(supports); }

  std::shared_ptr<Platform::UserDefaults> Standard() override { return standard_; }
  bool SupportsSuites() const override { return supportsSuites_.Get(); }
  std::shared_ptr<Platform::UserDefaults> OpenSuite(const std::string& name) override;

 private:
  const std::shared_ptr<Platform::SystemLog> systemLog_;
  const std::shared_ptr<FakeUserDefaults> standard_ =
      std::make_shared<FakeUserDefaults>(systemLog_);
  Guarded<bool> supportsSuites_{true};
  Guarded<std::map<std::string, std::shared_ptr<FakeUserDefaults>>> suites_;
};

}  // namespace TestSupport
