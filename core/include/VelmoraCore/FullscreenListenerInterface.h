#pragma once

#include <memory>
#include <string>

#include "VelmoraCore/Export.h"
#include "VelmoraCore/FullScreenMessageUiInterface.h"
#include "VelmoraCore/Object.h"

namespace Velmora {

// Hears what becomes of one full-screen message. Shared by the caller and the message. Called on
// the main queue; must not throw.
class VELMORA_CORE_API FullscreenListenerInterface : public virtual ObjectInterface {
 public:
  ~FullscreenListenerInterface() override;

  // The message came on screen or left it.
  virtual void OnShow(const std::shared_ptr<FullScreenMessageUiInterface>& message) = 0;
  virtual void OnDismiss(const std::shared_ptr<FullScreenMessageUiInterface>& message) = 0;

  // The message is about to go to `url`. True when the listener has dealt with it, so that the
  // message stays where it is.
  virtual bool OverrideUrlLoad(const std::shared_ptr<FullScreenMessageUiInterface>& message,
                               const std::string& url) = 0;
};

}  // namespace Velmora
