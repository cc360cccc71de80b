#pragma once

#include <map>
#include <string>

#include "QEXCore_iOS/Platform/Bundle.h"
#include "support/Guarded.h"
#include "support/TemporaryDirectory.h"

namespace TestSupport {

// A bundle with the information dictionary, resources and paths of the test's choice.
class FakeBundle final : public Platform::Bundle {
 public:
  // An absent value removes the key.
  void SetInfo(const std::string& key, const Platform::Value& value);
  void SetBundlePath(const std::string& path) { bundlePath_.Set(path); }
  void SetExecutablePath(const std::string& path) { executablePath_.Set(path); }

  // Packages a file with these contents, and gives its path.
  std::string AddResource(const std::string& name, const std::string& contents);

  // Packages whatever lies, or does not lie, at `path`.
  void SetResourcePath(const std::string& name, const std::string& path);

  std::string BundlePath() const override { return bundlePath_.Get(); }
  std::string ExecutablePath() const override { return executablePath_.Get(); }
  Platform::Value ObjectForInfoDictionaryKey(const std::string& key) const override;
  std::string PathForResource(const std::string& name) const override;

 private:
  TemporaryDirectory resourceFolder_;
  Guarded<std::string> bundlePath_{"/applications/Fake.app"};
  Guarded<std::string> executablePath_{"/applications/Fake.app/Fake"};
  Guarded<std::map<std::string, Platform::Value>> info_;
  Guarded<std::map<std::string, std::string>> resources_;
};

}  // namespace TestSupport
