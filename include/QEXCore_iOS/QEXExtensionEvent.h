#pragma once

#include <memory>
#include <optional>
#include <string>

#include "QEXCore_iOS/Platform/Error.h"
#include "QEXCore_iOS/Platform/Export.h"
#include "QEXCore_iOS/Platform/Value.h"

namespace Velmora {
class Event;
class JsonUtilityServiceInterface;
}  // namespace Velmora

// An event of the hub, as apps and extensions see it. Never changes; any thread may read it.
class QEXCORE_API QEXExtensionEvent {
 public:
  // A new event, to be dispatched. Texts end at their first zero byte and are not checked here; the
  // hub checks type and source when the event is dispatched. `data` is a dictionary that can be
  // written as JSON, or absent.
  //
  // Returns nothing when the data are anything else: dates, byte buffers, infinities, keys that are
  // no texts, containers more than 1,024 deep; `error` then stays as it was. Where the data look
  // right but cannot be written, as with a text that is not UTF-8, `error`, if given, tells why, in
  // the domain of the platform's JSON.
  static std::shared_ptr<QEXExtensionEvent> extensionEventWithName(
      const std::optional<std::string>& name, const std::optional<std::string>& type,
      const std::optional<std::string>& source, const Platform::Value& data,
      Platform::Error* error);

  // Absent when empty.
  std::optional<std::string> eventName() const;
  std::optional<std::string> eventType() const;
  std::optional<std::string> eventSource() const;

  // What the event carries, read anew on each call: a dictionary, or absent when there is nothing.
  // Numbers without a fraction are SInt64, others Float64. What has no counterpart on the platform
  // does not come back: null markers and empty texts are left out of dictionaries, and inside an
  // array they make the data unreadable: absent, with one error line.
  Platform::Value eventData() const;

  // For authors of modules of the core: the event behind this one, and the other way round.
  std::shared_ptr<Velmora::Event> getInternalEvent() const;
  static std::shared_ptr<QEXExtensionEvent> newInternal(
      const std::shared_ptr<Velmora::Event>& event,
      const std::shared_ptr<Velmora::JsonUtilityServiceInterface>& jsonUtilityService);

 private:
  QEXExtensionEvent(std::shared_ptr<Velmora::Event> event,
                    std::shared_ptr<Velmora::JsonUtilityServiceInterface> jsonUtilityService);

  const std::shared_ptr<Velmora::Event> event_;
  const std::shared_ptr<Velmora::JsonUtilityServiceInterface> json_utility_service_;
};
