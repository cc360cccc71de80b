#include "QEXCore_iOS/QEXExtension.h"

#include <utility>

#include "QEXCore_iOS/Platform/Host.h"
#include "QEXCore_iOS/QEXExtensionApi.h"

QEXExtension::QEXExtension() = default;

QEXExtension::~QEXExtension() = default;

std::shared_ptr<QEXExtension> QEXExtension::initWithApi(
    const std::shared_ptr<QEXExtensionApi>& api) {
  const std::lock_guard<std::mutex> lock(mutex_);
  api_ = api;
  return weak_from_this().lock();
}

std::shared_ptr<QEXExtension> QEXExtension::init() { return weak_from_this().lock(); }

std::optional<std::string> QEXExtension::name() const { return std::nullopt; }

std::optional<std::string> QEXExtension::version() const { return std::nullopt; }

void QEXExtension::unexpectedError(const Platform::Error& error) {
  Platform::Host::Current()->systemLog->Write("[VXSDK ERROR]: " + error.LocalizedDescription());
}

void QEXExtension::onUnregister() {
  std::shared_ptr<QEXExtensionApi> cleared;  // goes after the lock
  const std::lock_guard<std::mutex> lock(mutex_);
  cleared = std::exchange(api_, nullptr);
}

std::shared_ptr<QEXExtensionApi> QEXExtension::api() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return api_;
}
