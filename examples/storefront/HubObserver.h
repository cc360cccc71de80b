#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>

#include <QEXCore_iOS/Platform/Value.h>
#include <VelmoraCore/Event.h>
#include <VelmoraCore/ExternalModuleInterface.h>

namespace Storefront {

// A module that hears every event of the hub, and so knows every module's newest shared state. May
// be asked on any thread; waiting for what comes on the module's own thread needs another one.
class HubObserver {
 public:
  using OnEvent = std::function<void(const Velmora::Event&)>;
  using Condition = std::function<bool()>;

  // Registers the module with the core. `onEvent` is called with every event, on the module's
  // thread; it may be empty.
  explicit HubObserver(OnEvent onEvent);

  // The state of a module, parsed; absent when it has none.
  Platform::Value StateOf(const std::string& owner) const;

  // How many events of this type and source have been heard with this text among their data; with
  // any data when `key` is empty.
  int Count(const std::string& type, const std::string& source, const std::string& key = "",
            const std::string& text = "") const;

  // Asks again after every event until the condition holds. False when it does not in time.
  bool WaitUntil(const Condition& holds, std::chrono::seconds patience) const;

 private:
  struct Notes;

  const std::shared_ptr<Notes> notes_;
};

}  // namespace Storefront
