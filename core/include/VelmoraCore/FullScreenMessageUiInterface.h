#pragma once

#include <string>

#include "VelmoraCore/Export.h"
#include "VelmoraCore/Object.h"

namespace Velmora {

// A full-screen HTML message. May be called on any thread: every operation returns before the
// screen has changed. Nothing throws.
class VELMORA_CORE_API FullScreenMessageUiInterface : public virtual ObjectInterface {
 public:
  ~FullScreenMessageUiInterface() override;

  // Shows the message, unless an alert or another message is on screen; that is logged.
  virtual void Show() = 0;

  // Asks the system to open `url`; does nothing for an empty one.
  virtual void OpenUrl(const std::string& url) = 0;

  // Takes the message from the screen.
  virtual void Remove() = 0;
};

}  // namespace Velmora
