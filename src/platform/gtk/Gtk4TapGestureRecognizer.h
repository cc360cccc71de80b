#pragma once

#include <functional>

#include "QEXCore_iOS/Platform/View.h"
#include "platform/gtk/Gtk4Gesture.h"
#include "platform/gtk/Signal.h"

namespace Platform {

// So many clicks or taps in a row. Lives on the main queue.
class Gtk4TapGestureRecognizer final : public GestureRecognizer, public Gtk4Gesture {
 public:
  Gtk4TapGestureRecognizer(int requiredTaps, std::function<void()> tapped);

 private:
  SignalConnection onReleased_;
};

}  // namespace Platform
