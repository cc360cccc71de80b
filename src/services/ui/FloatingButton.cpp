#include "services/ui/FloatingButton.h"

namespace Velmora {

FloatingButton::FloatingButton(const std::shared_ptr<FloatingButtonListenerInterface>& listener)
    : Object("FloatingButton"), handler_(std::make_shared<KRVFloatingButtonHandler>(listener)) {}

// What is on screen belongs to the main queue, and must go there.
FloatingButton::~FloatingButton() { handler_->remove(); }

void FloatingButton::Display() { handler_->display(); }

void FloatingButton::Remove() { handler_->remove(); }

}  // namespace Velmora
