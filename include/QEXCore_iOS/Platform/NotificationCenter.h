#pragma once

#include <functional>
#include <memory>
#include <string>

#include "QEXCore_iOS/Platform/Export.h"
#include "QEXCore_iOS/Platform/Value.h"

namespace Platform {

// A notice that one part of the process posts and others observe.
struct QEXCORE_API Notification {
  std::string name;
  Value userInfo;  // a dictionary, or absent
};

// An observer's place in the notification centre. It observes until this goes, on any thread; a
// notice that is being delivered by then may still reach it.
class QEXCORE_API NotificationObservation {
 public:
  virtual ~NotificationObservation();
};

// Hands notices from whoever posts them to whoever observes their name. Safe from any thread.
class QEXCORE_API NotificationCenter {
 public:
  using Observer = std::function<void(const Notification&)>;

  virtual ~NotificationCenter();

  // `observer` hears every notice of that name, from any sender, on the thread that posts it. Never
  // null.
  virtual std::unique_ptr<NotificationObservation> AddObserver(const std::string& name,
                                                               Observer observer) = 0;

  // Calls the observers of the notice's name, in the order in which they were added, before it
  // returns. What an observer throws reaches the caller, and later observers then hear nothing.
  virtual void Post(const Notification& notification) = 0;
};

}  // namespace Platform
