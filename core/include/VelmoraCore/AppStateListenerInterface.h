#pragma once

#include "VelmoraCore/Export.h"
#include "VelmoraCore/Object.h"

namespace Velmora {

// Hears when the application changes between foreground and background. Shared by the caller and
// the UI service until it is unregistered. Called on the thread that brings the notice, usually
// the main one; must not throw.
class VELMORA_CORE_API AppStateListenerInterface : public virtual ObjectInterface {
 public:
  ~AppStateListenerInterface() override;

  virtual void OnForeground() = 0;
  virtual void OnBackground() = 0;
};

}  // namespace Velmora
