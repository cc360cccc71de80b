#pragma once

#include "VelmoraCore/Export.h"
#include "VelmoraCore/Object.h"

namespace Velmora {

// Hears what the user does with a floating button. Shared by the caller and the button. Called on
// the main queue; must not throw.
class VELMORA_CORE_API FloatingButtonListenerInterface : public virtual ObjectInterface {
 public:
  ~FloatingButtonListenerInterface() override;

  virtual void OnTapDetected() = 0;
  virtual void OnPanDetected() = 0;
};

}  // namespace Velmora
