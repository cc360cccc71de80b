#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "QEXCore_iOS/Platform/UserDefaults.h"
#include "support/Guarded.h"

namespace TestSupport {

// Passes everything on to other user defaults, and tells of every read first.
class WatchedUserDefaults final : public Platform::UserDefaults {
 public:
  explicit WatchedUserDefaults(std::shared_ptr<Platform::UserDefaults> inner)
      : inner_(std::move(inner)) {}

  // What `onRead` throws passes through to the reader.
  void OnRead(std::function<void(const std::string& key)> onRead) {
    onRead_.Set(std::move(onRead));
  }

  Platform::Value ObjectForKey(const std::string& key) const override {
    if (const auto onRead = onRead_.Get()) onRead(key);
    return inner_->ObjectForKey(key);
  }
  void SetObject(const std::string& key, const Platform::Value& value) override {
    inner_->SetObject(key, value);
  }
  void RemoveObject(const std::string& key) override { inner_->RemoveObject(key); }
  void RemoveObjectsWithPrefix(const std::string& prefix) override {
    inner_->RemoveObjectsWithPrefix(prefix);
  }
  std::vector<std::string> KeysWithPrefix(const std::string& prefix) const override {
    return inner_->KeysWithPrefix(prefix);
  }

 private:
  const std::shared_ptr<Platform::UserDefaults> inner_;
  Guarded<std::function<void(const std::string&)>> onRead_;
};

// Has no suites.
class WatchedUserDefaultsProvider final : public Platform::UserDefaultsProvider {
 public:
  explicit WatchedUserDefaultsProvider(std::shared_ptr<WatchedUserDefaults> standard)
      : standard_(std::move(standard)) {}

  std::shared_ptr<Platform::UserDefaults> Standard() override { return standard_; }
  bool SupportsSuites() const override { return false; }
  std::shared_ptr<Platform::UserDefaults> OpenSuite(const std::string&) override { return nullptr; }

 private:
  const std::shared_ptr<WatchedUserDefaults> standard_;
};

}  // namespace TestSupport
