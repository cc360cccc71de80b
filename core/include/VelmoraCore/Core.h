#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>

#include "VelmoraCore/Event.h"
#include "VelmoraCore/EventData.h"
#include "VelmoraCore/Export.h"
#include "VelmoraCore/ExternalModuleInterface.h"
#include "VelmoraCore/MobilePrivacyStatus.h"
#include "VelmoraCore/PlatformServicesInterface.h"
#include "VelmoraCore/SdkError.h"
#include "VelmoraCore/Variant.h"

namespace Velmora {

class EventHub;

// The core: an event hub with its modules, running on the services of a platform.
//
// Safe from any thread. Operations return at once; what they ask for happens on the core's own
// threads, and so do the calls of the functions given to them. Each request becomes an event, and
// events are handled in the order in which they were accepted. After Dispose nothing happens any
// more: operations are ignored, with a debug line, and errors are reported where an operation
// takes an error function.
class VELMORA_CORE_API Core {
 public:
  // Makes a core on the given services and begins to work. Log lines go to their logging service
  // from then on. With a null `eventHub` the core makes its own. Throws an SdkError of the code
  // "platform_services.missing_service" when `services` is empty, "event_hub.already_started" when
  // the hub serves a core already, and "event_hub.disposed" when it did.
  static std::shared_ptr<Core> Create(const std::shared_ptr<PlatformServicesInterface>& services,
                                      const std::shared_ptr<EventHub>& eventHub);

  // Disposes a core that was not.
  ~Core();
  Core(const Core&) = delete;
  Core& operator=(const Core&) = delete;

  // Stops the core: takes no more events, handles those that wait for at most two seconds, drops
  // the rest with a warning that counts them, disposes the services, and joins every thread. A
  // second call does nothing.
  void Dispose();

  // Takes the configuration that belongs to the app id: the last one that was downloaded for it at
  // once, a newer one when it has come. It stands over the one from a file.
  void ConfigureWithAppId(const std::string& appId) const;

  // Reads a JSON object from the file and takes its members as configuration, in the place of those
  // of the file before. A file that cannot be used gives one error line that names it, and changes
  // nothing.
  void ConfigureWithFileInPath(const std::string& path) const;

  // Sets members of the configuration, over what file and app id bring now and later; an empty
  // pointer or a null hides a member.
  void UpdateConfiguration(std::map<std::string, std::shared_ptr<Variant>> configuration);

  // Calls back with a JSON object of every identifier known.
  void GetSDKIdentities(const std::function<void(const std::string&)>& callback) const;

  void GetPrivacyStatus(const std::function<void(const MobilePrivacyStatus&)>& callback) const;
  void SetPrivacyStatus(MobilePrivacyStatus status) const;

  // Adds a module. `onError` is called before the operation returns when the module is refused:
  // "external_module.bad_module_name" (empty), "external_module.dup_module_name" (already there).
  void RegisterExternalModule(const std::shared_ptr<ExternalModuleInterface>& module,
                              std::function<void(SdkError&)> onError);

  // Ends the set-up: `callback`, which may be empty, is called once every request made before has
  // been handled.
  void Start(std::function<void()> callback);

  void CollectPii(std::map<std::string, std::string> data);
  void LifecyclePause();
  void LifecycleStart(std::map<std::string, std::string> additionalContextData);
  void SetAdvertisingIdentifier(const std::string& identifier);
  void SetPushIdentifier(const std::string& identifier);

  // Tracks an action or a state. The data are copied before the operation returns.
  void Track(const std::shared_ptr<EventData>& data) const;

  // Hands an event to the hub. `onError` is called before the operation returns when the event is
  // refused: "external_module.event_was_null", "external_module.event_type_not_supported",
  // "external_module.event_source_not_supported", "external_module.event_data_not_supported".
  void DispatchEvent(const std::shared_ptr<Event>& event, std::function<void(SdkError&)> onError);

  // The same, and calls `onResponse` once, with the first event that answers this one.
  // `onResponse` may be empty: then nobody waits for an answer.
  void DispatchEventWithResponseCallback(
      const std::shared_ptr<Event>& event,
      std::function<void(const std::shared_ptr<Event>&)> onResponse,
      std::function<void(SdkError&)> onError);

  // Hands `response` to the hub as the answer to `request`.
  void DispatchResponseEvent(const std::shared_ptr<Event>& response,
                             const std::shared_ptr<Event>& request,
                             std::function<void(SdkError&)> onError);

  void CollectData(std::map<std::string, std::shared_ptr<Variant>> data);
  void DownloadRules();

 private:
  struct Impl;
  explicit Core(std::unique_ptr<Impl> impl);
  std::unique_ptr<Impl> impl_;
};

}  // namespace Velmora
