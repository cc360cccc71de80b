#include "platform/linux/GioApplication.h"

#include <gio/gio.h>

#include "platform/linux/GlibPointers.h"

namespace Platform {

bool GioApplication::OpenUrl(const std::string& url) {
  // GLib takes the text to its first zero byte, and a relative one for a file's name.
  if (url.find('\0') != std::string::npos) return false;
  const GCharPointer scheme(g_uri_parse_scheme(url.c_str()));
  if (!scheme || !g_utf8_validate(url.data(), static_cast<gssize>(url.size()), nullptr)) {
    return false;
  }
  return g_app_info_launch_default_for_uri(url.c_str(), nullptr, nullptr) != FALSE;
}

}  // namespace Platform
