#include "platform/linux/DesktopNotifier.h"

#include <algorithm>
#include <cmath>
#include <exception>
#include <map>
#include <system_error>
#include <utility>
#include <vector>

#include <gio/gio.h>
#include <pthread.h>

#include "QEXCore_iOS/Platform/DeviceError.h"
#include "platform/linux/GlibPointers.h"
#include "platform/linux/NotificationServiceClient.h"
#include "platform/linux/PendingNotifications.h"
#include "platform/linux/UserDirectories.h"

namespace Platform {
namespace {

// The program's desktop entry, when it has one.
GObjectPointer<GAppInfo> OwnAppInfo() {
  const std::string program = ProgramName();
  GList* all = g_app_info_get_all();
  GObjectPointer<GAppInfo> own;
  for (GList* each = all; each != nullptr; each = each->next) {
    GObjectPointer<GAppInfo> info(static_cast<GAppInfo*>(each->data));
    const char* id = g_app_info_get_id(info.get());
    if (!own && id != nullptr && id == program + ".desktop") own = std::move(info);
  }
  g_list_free(all);
  return own;
}

void OpenApplication() {
  const auto info = OwnAppInfo();
  if (info) g_app_info_launch(info.get(), nullptr, nullptr, nullptr);
}

double SystemTime() {
  const auto now = std::chrono::system_clock::now().time_since_epoch();
  return std::chrono::duration<double>(now).count();
}

}  // namespace

// The thread, and what only it uses.
class DesktopNotifier::Loop {
 public:
  Loop(const Settings& settings, std::shared_ptr<SystemLog> systemLog)
      : settings_(settings),
        systemLog_(std::move(systemLog)),
        store_(settings.folder),
        context_(g_main_context_new()),
        cancellable_(g_cancellable_new()),
        thread_([this] { Run(); }) {}

  ~Loop() {
    stop_ = true;
    g_cancellable_cancel(cancellable_.get());
    g_main_context_wakeup(context_.get());
    thread_.join();
  }
  Loop(const Loop&) = delete;
  Loop& operator=(const Loop&) = delete;

  void Add(const DesktopNotification& notification) {
    {
      const std::lock_guard lock(mutex_);
      pending_[notification.key] = notification;
    }
    g_main_context_wakeup(context_.get());
  }

  void Forget(const std::string& key) {
    const std::lock_guard lock(mutex_);
    pending_.erase(key);
  }

 private:
  void Run() {
    ::pthread_setname_np(::pthread_self(), "QEXNotify");
    const ThreadDefaultContext threadDefault(context_.get());
    NotificationServiceClient client(settings_.busAddress, cancellable_.get(), settings_.activated);
    Load();
    while (!stop_) {
      for (const DesktopNotification& notification : TakeDue()) Show(client, notification);
      if (!stop_) Wait();
    }
  }

  void Load() {
    for (DesktopNotification& notification : store_.All()) {
      const std::lock_guard lock(mutex_);
      std::string key = notification.key;
      pending_.try_emplace(std::move(key), std::move(notification));
    }
  }

  // In the order of their times.
  std::vector<DesktopNotification> TakeDue() {
    const double now = settings_.now();
    std::vector<DesktopNotification> due;
    {
      const std::lock_guard lock(mutex_);
      for (const auto& [key, notification] : pending_) {
        if (notification.dueAt <= now) due.push_back(notification);
      }
      for (const DesktopNotification& notification : due) pending_.erase(notification.key);
    }
    std::stable_sort(due.begin(), due.end(),
                     [](const auto& one, const auto& other) { return one.dueAt < other.dueAt; });
    return due;
  }

  void Show(NotificationServiceClient& client, const DesktopNotification& notification) {
    if (!client.Connect()) {
      if (!stop_) {
        systemLog_->Write(
            "A notification is not shown before the next start: there is no message bus.");
      }
      return;
    }
    // Another process of the program may have shown it.
    if (!store_.Take(notification.key, notification.dueAt)) return;
    const std::string failure = client.Show(notification, settings_.applicationName());
    if (!failure.empty()) systemLog_->Write("A notification was not shown: " + failure);
  }

  // Until the next notification is due, something is heard from the bus, or something was added.
  void Wait() {
    const std::chrono::milliseconds time = TimeToWait();
    GSource* alarm = nullptr;
    if (time >= std::chrono::milliseconds::zero()) {
      alarm = g_timeout_source_new(static_cast<guint>(time.count()));
      g_source_set_callback(
          alarm, [](gpointer) -> gboolean { return G_SOURCE_REMOVE; }, nullptr, nullptr);
      g_source_attach(alarm, context_.get());
    }
    g_main_context_iteration(context_.get(), TRUE);
    if (alarm == nullptr) return;
    g_source_destroy(alarm);
    g_source_unref(alarm);
  }

  // Negative: as long as it takes.
  std::chrono::milliseconds TimeToWait() {
    const std::lock_guard lock(mutex_);
    if (pending_.empty()) return std::chrono::milliseconds(-1);
    double seconds = std::chrono::duration<double>(settings_.longestWait).count();
    const double now = settings_.now();
    for (const auto& [key, notification] : pending_) {
      seconds = std::min(seconds, std::max(0.0, notification.dueAt - now));
    }
    return std::chrono::milliseconds(static_cast<std::int64_t>(std::ceil(seconds * 1000)));
  }

  const Settings& settings_;
  const std::shared_ptr<SystemLog> systemLog_;
  PendingNotifications store_;
  const GMainContextPointer context_;
  const GObjectPointer<GCancellable> cancellable_;
  std::atomic<bool> stop_{false};
  std::mutex mutex_;
  std::map<std::string, DesktopNotification> pending_;  // by key; guarded by mutex_
  std::thread thread_;                                  // last: it uses what stands above
};

DesktopNotifier::DesktopNotifier(Settings settings, std::shared_ptr<SystemLog> systemLog)
    : settings_(std::move(settings)), systemLog_(std::move(systemLog)) {}

DesktopNotifier::~DesktopNotifier() = default;

DesktopNotifier::Settings DesktopNotifier::DefaultSettings(
    std::function<std::string()> applicationName) {
  const std::string data = UserDataHome();
  return {.busAddress = "",
          .folder = data.empty() ? "" : data + "/" + ProgramName(),
          .applicationName = std::move(applicationName),
          .now = SystemTime,
          .activated = [](const Value&) { OpenApplication(); }};
}

bool DesktopNotifier::HasBus() const {
  return NotificationServiceClient::HasBus(settings_.busAddress);
}

void DesktopNotifier::Schedule(const DesktopNotification& notification) {
  if (!std::isfinite(notification.dueAt)) {
    throw DeviceError("A notification cannot be kept for a time that is none.");
  }
  PendingNotifications(settings_.folder).Put(notification);
  RunningLoop().Add(notification);
}

void DesktopNotifier::Cancel(const std::string& key) {
  PendingNotifications(settings_.folder).Remove(key);
  const std::lock_guard lock(mutex_);
  if (loop_) loop_->Forget(key);
}

void DesktopNotifier::ResumePending() noexcept {
  try {
    if (PendingNotifications(settings_.folder).MayExist()) RunningLoop();
  } catch (const std::exception& error) {
    systemLog_->Write(std::string("Pending notifications are not taken up: ") + error.what());
  }
}

DesktopNotifier::Loop& DesktopNotifier::RunningLoop() {
  const std::lock_guard lock(mutex_);
  try {
    if (!loop_) loop_ = std::make_unique<Loop>(settings_, systemLog_);
  } catch (const std::system_error&) {
    throw DeviceError("Notifications have no thread.");
  }
  return *loop_;
}

}  // namespace Platform
