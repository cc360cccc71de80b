#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "QEXCore_iOS/Platform/Value.h"
#include "platform/linux/DesktopNotification.h"

namespace Platform {

// The notifications of an application that wait, in a file that outlives the process. Safe from any
// thread, and from several processes at once. The file is read whole and replaced whole; one that
// cannot be read counts as empty, and is replaced by the next change.
class PendingNotifications {
 public:
  static constexpr std::size_t kMost = 1000;               // notifications
  static constexpr std::size_t kLargestFile = 16'777'216;  // bytes

  // In this folder, which is made when it is needed; an empty path is one that cannot be made.
  explicit PendingNotifications(std::string folder);

  // True when there may be some; looks at the file's name only.
  bool MayExist() const;

  // In the order in which they were put there. Entries that are not as this class writes them are
  // left out.
  std::vector<DesktopNotification> All() const;

  // Adds a notification, in the place of one of its key. Throws Platform::DeviceError when it
  // cannot be written, when there are too many, and when a text is not UTF-8.
  void Put(const DesktopNotification& notification);

  // Takes away the one of that key. Throws as Put does.
  void Remove(const std::string& key);

  // Takes away the one of that key and time. False when it is not there, and when it cannot be
  // taken away: of several that try, one gets true.
  bool Take(const std::string& key, double dueAt) noexcept;

 private:
  using Notifications = std::vector<DesktopNotification>;

  void Change(const std::function<bool(Notifications&)>& change) const;
  void Write(const Notifications& notifications) const;

  const std::string folder_;
  const std::string file_;
};

}  // namespace Platform
