#pragma once

#include <memory>

#include "QEXCore_iOS/Platform/Export.h"

class QEXExtension;
class QEXExtensionEvent;

// The base class of what hears events for an extension. QEXExtensionApi takes the class; the SDK
// makes the instance, calls it on the extension's own thread only, one call at a time and in the
// order of the events, and lets it go when the extension leaves or another listener takes its
// place.
//
// An exception that leaves an operation is logged and told to the extension's unexpectedError; the
// events that follow are heard as usual.
class QEXCORE_API QEXExtensionListener : public std::enable_shared_from_this<QEXExtensionListener> {
 public:
  QEXExtensionListener();
  virtual ~QEXExtensionListener();
  QEXExtensionListener(const QEXExtensionListener&) = delete;
  QEXExtensionListener& operator=(const QEXExtensionListener&) = delete;

  // Stores the extension and returns this object; nothing when no shared pointer owns it.
  std::shared_ptr<QEXExtensionListener> initWithExtension(
      const std::shared_ptr<QEXExtension>& extension);

  // Makes the listener ready; extension() is there. Returns the object that takes the listener's
  // place, which is this one unless overridden; after nothing, events are heard by nobody.
  virtual std::shared_ptr<QEXExtensionListener> init();

  // One event of those asked for. Any operation of the SDK may be called from here. A listener that
  // takes its time delays only its own extension.
  virtual void hear(const std::shared_ptr<QEXExtensionEvent>& event);

  // The extension that registered the listener.
  std::shared_ptr<QEXExtension> extension() const;

 private:
  std::shared_ptr<QEXExtension> extension_;
};
