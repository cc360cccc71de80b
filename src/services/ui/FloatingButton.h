#pragma once

#include <memory>

#include "VelmoraCore/FloatingButtonInterface.h"
#include "VelmoraCore/FloatingButtonListenerInterface.h"
#include "VelmoraCore/Object.h"
#include "services/ui/KRVFloatingButtonHandler.h"

namespace Velmora {

// A small button over the application. May be called on any thread. A button that is still on
// screen when it goes is taken away.
class FloatingButton final : public Object, public virtual FloatingButtonInterface {
 public:
  explicit FloatingButton(const std::shared_ptr<FloatingButtonListenerInterface>& listener);
  ~FloatingButton() override;
  FloatingButton(const FloatingButton&) = delete;
  FloatingButton& operator=(const FloatingButton&) = delete;

  void Display() override;
  void Remove() override;

 private:
  const std::shared_ptr<KRVFloatingButtonHandler> handler_;
};

}  // namespace Velmora
