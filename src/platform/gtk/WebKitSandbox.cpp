#include "platform/gtk/WebKitSandbox.h"

#include <chrono>
#include <cstdlib>
#include <cstring>

#include <gio/gio.h>

#include "platform/linux/GlibPointers.h"

namespace Platform {
namespace {

constexpr guint kPatienceInSeconds = 2;
constexpr std::size_t kLongestReason = 500;

bool IsSwitchedOff() {
  const char* value = std::getenv("WEBKIT_DISABLE_SANDBOX_THIS_IS_DANGEROUS");
  return value != nullptr && std::strcmp(value, "0") != 0;
}

// There it has the host confine its processes.
bool IsInFlatpak() { return g_file_test("/.flatpak-info", G_FILE_TEST_EXISTS) != FALSE; }

bool IsInstalled(const char* program) {
  return GCharPointer(g_find_program_in_path(program)) != nullptr;
}

// One trial of the sandbox, on a context of its own.
struct Trial {
  bool hasEnded = false;
  bool isTooSlow = false;
  std::string output;

  static void OnEnd(GObject* process, GAsyncResult* result, gpointer self) noexcept {
    auto& trial = *static_cast<Trial*>(self);
    char* output = nullptr;
    g_subprocess_communicate_utf8_finish(G_SUBPROCESS(process), result, nullptr, &output, nullptr);
    const GCharPointer owned(output);
    if (output != nullptr) trial.output = g_strstrip(output);
    trial.hasEnded = true;
  }

  static gboolean OnTooSlow(gpointer self) noexcept {
    static_cast<Trial*>(self)->isTooSlow = true;
    return G_SOURCE_REMOVE;
  }
};

// What WebKit asks of bubblewrap, without the files that it hides.
GObjectPointer<GSubprocess> StartTrial(GError** error) {
  return GObjectPointer<GSubprocess>(g_subprocess_new(
      static_cast<GSubprocessFlags>(G_SUBPROCESS_FLAGS_STDERR_PIPE |
                                    G_SUBPROCESS_FLAGS_STDOUT_SILENCE),
      error, "bwrap", "--die-with-parent", "--unshare-pid", "--unshare-uts", "--unshare-net",
      "--ro-bind", "/", "/", "--proc", "/proc", "--dev", "/dev", "true", nullptr));
}

std::string WaitFor(GSubprocess* process, GMainContext* context) {
  Trial trial;
  const GObjectPointer<GCancellable> cancellable(g_cancellable_new());
  g_subprocess_communicate_utf8_async(process, nullptr, cancellable.get(), &Trial::OnEnd, &trial);
  GSource* alarm = g_timeout_source_new_seconds(kPatienceInSeconds);
  g_source_set_callback(alarm, &Trial::OnTooSlow, &trial, nullptr);
  g_source_attach(alarm, context);
  while (!trial.hasEnded && !trial.isTooSlow) g_main_context_iteration(context, TRUE);
  g_source_destroy(alarm);
  g_source_unref(alarm);
  if (trial.hasEnded) {
    if (g_subprocess_get_successful(process) != FALSE) return {};
    return trial.output.empty() ? "bubblewrap fails" : trial.output.substr(0, kLongestReason);
  }
  g_subprocess_force_exit(process);
  g_cancellable_cancel(cancellable.get());
  while (!trial.hasEnded) g_main_context_iteration(context, TRUE);
  return "bubblewrap does not answer";
}

}  // namespace

std::string WhyWebKitCannotStart() {
  if (IsSwitchedOff() || IsInFlatpak()) return {};
  if (!IsInstalled("bwrap")) return "bubblewrap is not installed";
  if (!IsInstalled("xdg-dbus-proxy")) return "xdg-dbus-proxy is not installed";
  const GMainContextPointer context(g_main_context_new());
  const ThreadDefaultContext threadDefault(context.get());
  GError* error = nullptr;
  const auto process = StartTrial(&error);
  if (!process) {
    std::string reason = error->message;
    g_error_free(error);
    return reason;
  }
  return WaitFor(process.get(), context.get());
}

}  // namespace Platform
