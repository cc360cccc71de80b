#pragma once

#include <atomic>
#include <memory>

#include "QEXCore_iOS/Platform/MainQueue.h"
#include "QEXCore_iOS/Platform/Ui.h"
#include "VelmoraCore/FloatingButtonListenerInterface.h"

// Presents one floating button, which the user can drag and tap.
//
// display and remove may be called on any thread: they return before the screen has changed, and
// never throw. Everything else belongs to the main queue.
class KRVFloatingButtonHandler : public std::enable_shared_from_this<KRVFloatingButtonHandler> {
 public:
  using Listener = std::shared_ptr<Velmora::FloatingButtonListenerInterface>;

  explicit KRVFloatingButtonHandler(Listener listener);
  ~KRVFloatingButtonHandler();
  KRVFloatingButtonHandler(const KRVFloatingButtonHandler&) = delete;
  KRVFloatingButtonHandler& operator=(const KRVFloatingButtonHandler&) = delete;

  // Puts the button on screen; one that is there already is replaced.
  void display();

  // Takes the button from the screen; nothing happens when it is not there.
  void remove();

  // Where the button appears: at the right edge of the key window, in the middle of its height. A
  // missing window counts as one without a size.
  static Platform::Rect getImageFrame();

  // What the gestures and the timer do. The button may be dragged anywhere, out of sight too.
  void panWasRecognized(Platform::PanGestureRecognizer& panner);
  void tapDetected();
  void bringFloatingButtonToFront();

 private:
  void Build();
  void AddGestures(Platform::Ui& ui);
  void KeepInFront();
  void TakeAway();
  void Recenter();

  const Listener listener_;
  std::atomic<bool> isDisplayed_{false};  // between display and remove

  // These belong to the main queue.
  std::shared_ptr<Platform::GestureRecognizer> singleTap_;
  std::shared_ptr<Platform::PanGestureRecognizer> panner_;
  std::unique_ptr<Platform::MainQueueTimer> timer_;
  std::shared_ptr<Platform::ImageView> buttonImageView_;
  std::shared_ptr<Platform::Window> window_;  // where the button is
  std::unique_ptr<Platform::RotationWatch> rotationWatch_;
};
