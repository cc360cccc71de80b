#include "QEXCore_iOS/QEXExtensionListener.h"

#include "QEXCore_iOS/QEXExtension.h"

QEXExtensionListener::QEXExtensionListener() = default;

QEXExtensionListener::~QEXExtensionListener() = default;

std::shared_ptr<QEXExtensionListener> QEXExtensionListener::initWithExtension(
    const std::shared_ptr<QEXExtension>& extension) {
  extension_ = extension;
  return weak_from_this().lock();
}

std::shared_ptr<QEXExtensionListener> QEXExtensionListener::init() {
  return weak_from_this().lock();
}

void QEXExtensionListener::hear(const std::shared_ptr<QEXExtensionEvent>& /*event*/) {}

std::shared_ptr<QEXExtension> QEXExtensionListener::extension() const { return extension_; }
