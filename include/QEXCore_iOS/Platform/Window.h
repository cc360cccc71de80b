#pragma once

#include <memory>
#include <vector>

#include "QEXCore_iOS/Platform/Alert.h"
#include "QEXCore_iOS/Platform/Export.h"
#include "QEXCore_iOS/Platform/Geometry.h"
#include "QEXCore_iOS/Platform/View.h"

namespace Platform {

// What a view controller contains others for.
enum class ContainerKind { None, Split, Navigation, TabBar, Page };

// Something that fills a window or a part of one, as the application built it. Lives on the main
// queue. Asking one whose window has gone finds nothing.
class QEXCORE_API ViewController {
 public:
  virtual ~ViewController();

  // What it presents over itself, a dialog say; null when it presents nothing.
  virtual std::shared_ptr<ViewController> PresentedViewController() const = 0;

  virtual ContainerKind Kind() const = 0;

  // What a container holds, in its order; nothing for any other.
  virtual std::vector<std::shared_ptr<ViewController>> ViewControllers() const = 0;

  // The one on top of a navigation container, and the selected one of a tab-bar container; null for
  // any other, and where there is none.
  virtual std::shared_ptr<ViewController> TopViewController() const = 0;
  virtual std::shared_ptr<ViewController> SelectedViewController() const = 0;

  // False before it has come on screen for the first time.
  virtual bool IsViewLoaded() const = 0;

  // Shows the alert over itself and keeps it until it leaves the screen.
  virtual void Present(const std::shared_ptr<AlertController>& alert, bool animated) = 0;
};

// A window of the application. Lives on the main queue.
class QEXCORE_API Window {
 public:
  virtual ~Window();

  virtual Rect Frame() const = 0;

  // Null when the window shows none.
  virtual std::shared_ptr<ViewController> RootViewController() const = 0;

  // Puts a view over everything in the window, which keeps it until it is removed.
  virtual void AddSubview(const std::shared_ptr<View>& view) = 0;

  // Nothing happens for a view that is not in this window.
  virtual void BringSubviewToFront(const std::shared_ptr<View>& view) = 0;
};

}  // namespace Platform
