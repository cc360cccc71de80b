#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "QEXCore_iOS/Platform/Alert.h"
#include "QEXCore_iOS/Platform/Window.h"
#include "VelmoraCore/AlertListenerInterface.h"
#include "services/ui/KRVMessagesMonitor.h"

// Presents alerts, one at a time. There are no instances: the newest request is kept for the
// process, and keeps its monitor and listener, until the next one takes its place. An alert that is
// on screen belongs to the request that it was made for, also when a later request has been refused
// meanwhile.
//
// Requests may be made on any thread and never throw; everything else belongs to the main queue.
class KRVAlertHandler {
 public:
  using Listener = std::shared_ptr<Velmora::AlertListenerInterface>;
  using Text = std::optional<std::string>;

  KRVAlertHandler() = delete;

  // Whether the device knows alerts of the modern kind. May be called on any thread.
  static bool isUiAlertControllerSupported();

  // Shows an alert as soon as the main queue gets to it, unless a message is on screen by then. An
  // absent or empty button text leaves the button out.
  static void showWithTitle(const Text& title, const Text& message, const Text& positiveButtonText,
                            const Text& negativeButtonText, const Listener& listener,
                            const std::shared_ptr<KRVMessagesMonitor>& messagesMonitor);

  // The view controller to present on: of what `controller` presents or contains, the innermost
  // that the user sees. Null for null, and for a container that has selected none.
  static std::shared_ptr<Platform::ViewController> findBestViewController(
      std::shared_ptr<Platform::ViewController> controller);

  // The alert of the newest shown request came on screen, or left it: sets or clears the monitor's
  // flag, then tells the listener, if there is one.
  static void onShow();
  static void onDismiss();

  // A button of a legacy alert was tapped: 1 is the positive one, 0 the negative one; others do
  // nothing.
  static void alertView(int clickedButtonAtIndex);

 private:
  struct Request;
  struct Slots;

  static Slots& TheSlots();
  static std::shared_ptr<const Request> Shown();
  static void Show(const std::shared_ptr<const Request>& request);
  static void PresentController(const std::shared_ptr<const Request>& request);
  static void ShowAlertView(const std::shared_ptr<const Request>& request);
  static void SetShown(const std::shared_ptr<const Request>& request);
  static void RespondPositively();
  static void RespondNegatively();
  static void Respond(const std::function<void(Velmora::AlertListenerInterface&)>& respond);
};
