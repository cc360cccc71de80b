#include "platform/gtk/GlibTimer.h"

#include <utility>

#include "platform/gtk/Shield.h"

namespace Platform {
namespace {

gboolean OnTick(gpointer tick) noexcept {
  bool goesOn = false;
  Shield([&] { goesOn = (*static_cast<std::function<bool()>*>(tick))(); });
  return goesOn ? G_SOURCE_CONTINUE : G_SOURCE_REMOVE;
}

}  // namespace

GlibTimer::GlibTimer(std::chrono::milliseconds interval, std::function<bool()> tick)
    : source_(g_timeout_source_new(static_cast<guint>(interval.count()))) {
  g_source_set_callback(source_.get(), &OnTick, new std::function<bool()>(std::move(tick)),
                        [](gpointer data) { delete static_cast<std::function<bool()>*>(data); });
  g_source_attach(source_.get(), nullptr);
}

}  // namespace Platform
