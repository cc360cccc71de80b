#pragma once

#include <functional>

namespace Platform {

// Does what GTK has called for. What it throws may not pass GTK's frames: it ends as one line on
// the installed host's system log.
void Shield(const std::function<void()>& work) noexcept;

}  // namespace Platform
