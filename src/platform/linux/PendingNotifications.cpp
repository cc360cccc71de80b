#include "platform/linux/PendingNotifications.h"

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <optional>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include "QEXCore_iOS/Platform/DeviceError.h"
#include "platform/linux/FileDescriptor.h"
#include "platform/linux/LinuxJsonSerialization.h"
#include "platform/linux/SmallFile.h"

namespace Platform {
namespace {

[[noreturn]] void Fail(const std::string& what, int number) {
  throw DeviceError("Pending notifications: " + what + ": " + std::strerror(number));
}

Value ToValue(const DesktopNotification& notification) {
  Value value{{"key", notification.key},           {"dueAt", notification.dueAt},
              {"body", notification.body},         {"sound", notification.sound},
              {"isSilent", notification.isSilent}, {"category", notification.category}};
  value.Set("userInfo", notification.userInfo);
  return value;
}

// Nothing for a value that ToValue does not make.
std::optional<DesktopNotification> FromValue(const Value& value) {
  const Value& dueAt = value.Get("dueAt");
  const Value& userInfo = value.Get("userInfo");
  const bool isWhole = value.Get("key").IsString() && dueAt.IsNumber() &&
                       std::isfinite(dueAt.AsDouble()) && value.Get("body").IsString() &&
                       value.Get("sound").IsString() && value.Get("isSilent").IsBoolean() &&
                       value.Get("category").IsString() &&
                       (userInfo.IsAbsent() || userInfo.IsDictionary() || userInfo.IsArray());
  if (!isWhole) return std::nullopt;
  return DesktopNotification{.key = value.Get("key").AsString(),
                             .dueAt = dueAt.AsDouble(),
                             .body = value.Get("body").AsString(),
                             .sound = value.Get("sound").AsString(),
                             .isSilent = value.Get("isSilent").AsBool(),
                             .category = value.Get("category").AsString(),
                             .userInfo = userInfo};
}

void WriteWhole(const FileDescriptor& file, const std::string& text) {
  std::size_t written = 0;
  while (written < text.size()) {
    const ssize_t count = ::write(file.Number(), text.data() + written, text.size() - written);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) Fail("cannot write", errno);
    written += static_cast<std::size_t>(count);
  }
  if (::fsync(file.Number()) != 0) Fail("cannot write", errno);
}

}  // namespace

PendingNotifications::PendingNotifications(std::string folder)
    : folder_(std::move(folder)), file_(folder_ + "/pending-notifications.json") {}

bool PendingNotifications::MayExist() const {
  return !folder_.empty() && ::access(file_.c_str(), F_OK) == 0;
}

std::vector<DesktopNotification> PendingNotifications::All() const {
  Notifications all;
  const auto text = ReadSmallFile(file_, kLargestFile);
  if (folder_.empty() || !text) return all;
  const Value parsed = LinuxJsonSerialization().Parse(*text, nullptr);
  for (const Value& item : parsed.Items()) {
    if (all.size() == kMost) break;
    if (auto notification = FromValue(item)) all.push_back(std::move(*notification));
  }
  return all;
}

void PendingNotifications::Put(const DesktopNotification& notification) {
  Change([&](Notifications& all) {
    std::erase_if(all, [&](const auto& each) { return each.key == notification.key; });
    if (all.size() >= kMost) throw DeviceError("Pending notifications: there are too many");
    all.push_back(notification);
    return true;
  });
}

void PendingNotifications::Remove(const std::string& key) {
  if (!MayExist()) return;
  Change([&](Notifications& all) {
    return std::erase_if(all, [&](const auto& each) { return each.key == key; }) > 0;
  });
}

bool PendingNotifications::Take(const std::string& key, double dueAt) noexcept {
  try {
    bool isTaken = false;
    Change([&](Notifications& all) {
      isTaken = std::erase_if(all, [&](const auto& each) {
                  return each.key == key && !(each.dueAt < dueAt) && !(each.dueAt > dueAt);
                }) > 0;
      return isTaken;
    });
    return isTaken;
  } catch (...) {
    return false;
  }
}

// Replaces the file by what `change` makes of it, unless that gives false, while no other process
// and no other thread does the same.
void PendingNotifications::Change(const std::function<bool(Notifications&)>& change) const {
  if (folder_.empty()) throw DeviceError("Pending notifications: there is no folder for them");
  std::error_code error;
  std::filesystem::create_directories(folder_, error);
  const FileDescriptor lock(::open((folder_ + "/pending-notifications.lock").c_str(),
                                   O_RDWR | O_CREAT | O_CLOEXEC, 0600));
  if (!lock.IsOpen()) Fail("cannot open " + folder_, errno);
  int result = -1;
  do {
    result = ::flock(lock.Number(), LOCK_EX);
  } while (result != 0 && errno == EINTR);
  if (result != 0) Fail("cannot lock", errno);
  Notifications all = All();
  if (change(all)) Write(all);
}

void PendingNotifications::Write(const Notifications& notifications) const {
  if (notifications.empty()) {
    if (::unlink(file_.c_str()) != 0 && errno != ENOENT) Fail("cannot remove", errno);
    return;
  }
  Value items = Value::Array();
  for (const DesktopNotification& each : notifications) items.Append(ToValue(each));
  Error error;
  const auto text = LinuxJsonSerialization().Serialize(items, JsonLayout::Compact, &error);
  if (!text) throw DeviceError("Pending notifications: " + error.LocalizedDescription());
  if (text->size() > kLargestFile) throw DeviceError("Pending notifications: they are too large");
  const std::string fresh = file_ + ".new";
  {
    const FileDescriptor file(
        ::open(fresh.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600));
    if (!file.IsOpen()) Fail("cannot open " + fresh, errno);
    WriteWhole(file, *text);
  }
  if (std::rename(fresh.c_str(), file_.c_str()) != 0) Fail("cannot replace", errno);
}

}  // namespace Platform
