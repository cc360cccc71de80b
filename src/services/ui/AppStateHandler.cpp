#include "services/ui/AppStateHandler.h"

namespace Velmora {

AppStateHandler::AppStateHandler() : Object("AppState") {}

AppState AppStateHandler::GetAppState() const { return state_; }

void AppStateHandler::SetAppState(AppState state) { state_.exchange(state); }

void AppStateHandler::RegisterListener(const Listener& listener) {
  if (listener) listeners_.insert(listener);
}

void AppStateHandler::UnregisterListener(const Listener& listener) { listeners_.erase(listener); }

std::size_t AppStateHandler::GetNumListeners() const { return listeners_.size(); }

void AppStateHandler::NotifyListeners(AppState state) {
  // A copy, because a listener may unregister itself.
  const std::set<Listener> listeners = listeners_;
  for (const Listener& listener : listeners) {
    switch (state) {
      case AppState::Foreground:
        listener->OnForeground();
        break;
      case AppState::Background:
        listener->OnBackground();
        break;
    }
  }
}

}  // namespace Velmora
