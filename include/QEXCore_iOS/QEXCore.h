#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "QEXCore_iOS/Platform/Class.h"
#include "QEXCore_iOS/Platform/Error.h"
#include "QEXCore_iOS/Platform/Export.h"
#include "QEXCore_iOS/Platform/Value.h"

class QEXExtensionEvent;

// Whether the user lets the SDK collect data. Any other value counts as unknown.
enum class QEXMobilePrivacyStatus : std::uint64_t {
  optedIn = 0,
  optedOut = 1,
  unknown = 2,
};

// How much the SDK logs: each level includes those before it. Any other value counts as error.
enum class QEXMobileLogLevel : std::uint64_t {
  error = 0,
  warning = 1,
  debug = 2,
  trace = 3,
};

// The SDK, as an app sees it.
//
// Threads: the first call in the process that needs the core makes it, and must return on one
// thread before others call; from then on any thread may call any operation. Operations run on the
// caller's thread, hand the request to the core and return at once. Callbacks are called on the
// core's threads, never on the main thread, and must not block them.
//
// Failures: nothing here throws. What goes wrong inside, and what a callback throws, ends as one
// error line with the tag "QEXCore" on the log.
//
// Arguments: texts are UTF-8 and end at their first zero byte; an absent one reaches the core as
// the empty text. A value that is no dictionary where one is asked for counts as an absent one, and
// an absent dictionary as an empty one.
class QEXCORE_API QEXCore {
 public:
  QEXCore() = delete;

  // The version of the SDK. Does not touch the core.
  static std::string extensionVersion();

  // Takes the configuration that was published under the app id. (This version of the core keeps
  // the id and fetches nothing yet.)
  static void configureWithAppId(const std::optional<std::string>& appId);

  // Takes the configuration from a JSON file. A file that cannot be used changes nothing.
  static void configureWithFileInPath(const std::optional<std::string>& filePath);

  // Changes single settings; a null marker removes one. Values that have no counterpart in the core
  // (data, dates and other objects) remove theirs, too.
  static void updateConfiguration(const Platform::Value& configuration);

  // Ends the set-up: call it once, after the configuration and the registrations. `callback`, which
  // may be empty, is called when all that was asked before is done.
  static void start(std::function<void()> callback);

  // Keeps preferences under this application group instead of the application's own. Call it
  // first of all, on one thread; it does not touch the core. Absent or empty: the application's
  // own.
  static void setAppGroup(const std::optional<std::string>& appGroup);

  // For the whole process, from now on. Does not touch the core.
  static void setLogLevel(QEXMobileLogLevel level);

  static void setPrivacyStatus(QEXMobilePrivacyStatus status);

  // Calls back with the status; an empty callback is never called.
  static void getPrivacyStatus(std::function<void(QEXMobilePrivacyStatus)> callback);

  // Calls back with every identifier that the SDK knows of the user, as the text of a JSON object,
  // or absent when the core gives none. An empty callback is never called.
  static void getSdkIdentities(std::function<void(const std::optional<std::string>&)> callback);

  static void setAdvertisingIdentifier(const std::optional<std::string>& identifier);

  // `deviceToken` is the byte buffer that the platform's push service handed out. Anything else,
  // and an empty buffer, takes the identifier away.
  static void setPushIdentifier(const Platform::Value& deviceToken);

  // Reports what the user did or where the user is. An absent or empty name is passed on as it is.
  // `data` holds texts under non-empty text keys; other entries are dropped with a warning.
  static void trackAction(const std::optional<std::string>& action, const Platform::Value& data);
  static void trackState(const std::optional<std::string>& state, const Platform::Value& data);

  // Hands over what identifies a person. `data` as for trackAction.
  static void collectPii(const Platform::Value& data);

  // The application came to the front. `additionalContextData` as the data of trackAction.
  static void lifecycleStart(const Platform::Value& additionalContextData);

  // The application leaves the front.
  static void lifecyclePause();

  // Takes the SDK's own entries out of the launch options, or out of the user information of a
  // notification that was opened. Other entries are ignored.
  static void collectLaunchInfo(const Platform::Value& launchInfo);

  // Fetches the rules anew. (This version of the core has nowhere to fetch them from yet and says
  // so in the log.)
  static void downloadRules();

  // Adds a module of the app's own to the hub: `extensionClass` is ClassOf a subclass of
  // QEXExtension, which says when its instance is made and called. True when the hub has accepted
  // it; its init comes later, on its own thread, and before the callback of a start that is called
  // after this. Otherwise `error`, if given, has the domain QEXExtensionErrorDomain and the code 6
  // (the class is no extension), 1 (the name is absent, empty or no name), 2 (there is a module of
  // this name) or 0.
  static bool registerExtension(const Platform::Class& extensionClass, Platform::Error* error);

  // Hands an event to the hub, which numbers it and brings it to every listener of its type and
  // source. True when it was accepted. Otherwise `error`, if given, has the domain
  // QEXExtensionErrorDomain and the code 7 (there is no event), 3 or 4 (the type or source is not 1
  // to 255 bytes of UTF-8 without blanks and control characters), 5 (the data are more than a
  // million values) or 0 (too many events wait, or the SDK could not be made).
  static bool dispatchEvent(const std::shared_ptr<QEXExtensionEvent>& event,
                            Platform::Error* error);

  // The same, and calls `responseCallback`, unless it is empty, once, with the first event that is
  // dispatched as a response to this one. When none ever is, it is never called.
  static bool dispatchEventWithResponseCallback(
      const std::shared_ptr<QEXExtensionEvent>& event,
      std::function<void(const std::shared_ptr<QEXExtensionEvent>&)> responseCallback,
      Platform::Error* error);

  // Dispatches `responseEvent` as the answer to `requestEvent`. Code 7 when either is absent.
  static bool dispatchResponseEvent(const std::shared_ptr<QEXExtensionEvent>& responseEvent,
                                    const std::shared_ptr<QEXExtensionEvent>& requestEvent,
                                    Platform::Error* error);
};
