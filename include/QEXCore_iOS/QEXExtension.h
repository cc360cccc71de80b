#pragma once

#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "QEXCore_iOS/Platform/Error.h"
#include "QEXCore_iOS/Platform/Export.h"

class QEXExtensionApi;

// The base class of a module that an app adds to the event hub with QEXCore::registerExtension.
//
// Life: QEXCore::registerExtension default-constructs an instance and asks it for its name, on the
// caller's thread. Once the module has been accepted, a thread of its own, named after it, calls
// initWithApi and init, and later unexpectedError and onUnregister. The SDK lets the instance go
// after onUnregister.
//
// An exception that one of these operations throws is logged as one error line and told to
// unexpectedError.
class QEXCORE_API QEXExtension : public std::enable_shared_from_this<QEXExtension> {
 public:
  QEXExtension();
  virtual ~QEXExtension();
  QEXExtension(const QEXExtension&) = delete;
  QEXExtension& operator=(const QEXExtension&) = delete;

  // Stores the API and returns this object; nothing when no shared pointer owns it.
  std::shared_ptr<QEXExtension> initWithApi(const std::shared_ptr<QEXExtensionApi>& api);

  // Makes the extension ready; api() is there, and listeners may be registered. Returns the object
  // that takes the extension's place, which is this one unless overridden. An extension that
  // returns nothing leaves the hub at once.
  virtual std::shared_ptr<QEXExtension> init();

  // The name under which the module joins the hub: 1 to 255 bytes of UTF-8 without control
  // characters, which no other module has. Both are asked for before initWithApi and init, so they
  // must be constants. An absent name, which the base class gives, cannot be registered.
  virtual std::optional<std::string> name() const;
  virtual std::optional<std::string> version() const;

  // Something failed that nobody could be told otherwise, an exception of a listener, say. The base
  // class writes one line to the platform's log.
  virtual void unexpectedError(const Platform::Error& error);

  // The extension has left the hub, so that its API refuses everything; the last call. The base
  // class clears the API.
  virtual void onUnregister();

  // The way to the hub: absent before initWithApi and after onUnregister. May be called on any
  // thread.
  std::shared_ptr<QEXExtensionApi> api() const;

 private:
  mutable std::mutex mutex_;
  std::shared_ptr<QEXExtensionApi> api_;
};
