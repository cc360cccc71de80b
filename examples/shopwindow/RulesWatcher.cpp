#include "RulesWatcher.h"

#include <utility>

#include <QEXCore_iOS/Platform/Host.h>
#include <QEXCore_iOS/QEXCore.h>
#include <QEXCore_iOS/QEXExtensionApi.h>
#include <QEXCore_iOS/QEXExtensionEvent.h>
#include <QEXCore_iOS/QEXExtensionListener.h>

namespace {

// The SDK makes the listener, so what it shall tell stands here; set before it is made.
RulesWatcher::Watch theWatch;

class OutcomeListener : public QEXExtensionListener {
 public:
  void hear(const std::shared_ptr<QEXExtensionEvent>& event) override {
    const Platform::Value data = event->eventData();
    const auto text = [&data](const char* key) { return data.Get(key).AsString(); };
    Platform::Host::Current()->mainQueue->Async(
        [rule = text("rule"), consequence = text("consequence"), outcome = text("outcome")] {
          theWatch(rule, consequence, outcome);
        });
  }
};

}  // namespace

bool RulesWatcher::Register(Watch watch) {
  theWatch = std::move(watch);
  return QEXCore::registerExtension(Platform::ClassOf<RulesWatcher>(), nullptr);
}

std::shared_ptr<QEXExtension> RulesWatcher::init() {
  api()->registerListener(Platform::ClassOf<OutcomeListener>(), "rules", "response", nullptr);
  return QEXExtension::init();
}
