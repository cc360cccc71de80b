#pragma once

#include "VelmoraCore/Export.h"
#include "VelmoraCore/Object.h"

namespace Velmora {

// Hears what becomes of one alert. Shared by the caller and the UI service, which lets go of it
// when the next alert is asked for. Called on the main queue; must not throw.
class VELMORA_CORE_API AlertListenerInterface : public virtual ObjectInterface {
 public:
  ~AlertListenerInterface() override;

  // The user chose the positive or the negative button.
  virtual void OnPositiveResponse() = 0;
  virtual void OnNegativeResponse() = 0;

  // The alert came on screen or left it.
  virtual void OnShow() = 0;
  virtual void OnDismiss() = 0;
};

}  // namespace Velmora
