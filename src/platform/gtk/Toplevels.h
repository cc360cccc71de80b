#pragma once

#include <functional>
#include <map>
#include <vector>

#include <gtk/gtk.h>

#include "platform/gtk/Signal.h"

namespace Platform {

// What GTK knows of the process's windows. On the main queue only.

// Every window and dialog, in the order in which they were made; not GTK's own inspector.
std::vector<GtkWindow*> AllToplevels();

// The visible modal dialog that belongs to `window`; null when there is none.
GtkWindow* DialogOver(GtkWindow* window);

// The window that `window` was put over as a modal dialog; itself when it is none.
GtkWindow* WindowBelow(GtkWindow* window);

// To be seen, as far as the window itself goes.
bool IsSeen(GtkWindow* window);

// It takes the user's input. A hidden window may still count as active with GTK.
bool IsInFront(GtkWindow* window);

// Follows the windows of the process as they come and go. Lives on the main queue.
class ToplevelWatch {
 public:
  // Makes the connections to a window's signals that shall last while the window is there.
  using Connect = std::function<std::vector<SignalConnection>(GtkWindow* window)>;

  // Calls `connect` for each window that is there or comes, and `changed` whenever some have come
  // or gone.
  ToplevelWatch(Connect connect, std::function<void()> changed);

 private:
  void Update();

  const Connect connect_;
  std::map<GtkWindow*, std::vector<SignalConnection>> connections_;
  SignalConnection onItemsChanged_;
};

}  // namespace Platform
