#pragma once

#include "VelmoraCore/Export.h"
#include "VelmoraCore/Object.h"

namespace Velmora {

// A small button over the application, which the user can drag and tap. May be called on any
// thread: both operations return before the screen has changed, and log what fails.
class VELMORA_CORE_API FloatingButtonInterface : public virtual ObjectInterface {
 public:
  ~FloatingButtonInterface() override;

  virtual void Display() = 0;
  virtual void Remove() = 0;
};

}  // namespace Velmora
