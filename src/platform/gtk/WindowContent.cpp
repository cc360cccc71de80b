#include "platform/gtk/WindowContent.h"

#include <algorithm>
#include <iterator>

#include "platform/gtk/WeakObject.h"

namespace Platform {
namespace {

// By name, since nothing else of libadwaita is needed.
bool IsOfLibadwaita(GtkWindow* window) {
  constexpr const char* kTypes[] = {"AdwWindow", "AdwApplicationWindow"};
  return std::any_of(std::begin(kTypes), std::end(kTypes), [window](const char* name) {
    const GType type = g_type_from_name(name);
    return type != 0 && g_type_is_a(G_OBJECT_TYPE(window), type) != FALSE;
  });
}

}  // namespace

GtkWidget* ContentOf(GtkWindow* window) {
  if (!IsOfLibadwaita(window)) return gtk_window_get_child(window);
  GtkWidget* content = nullptr;
  g_object_get(window, "content", &content, nullptr);
  const GObjectPointer<GtkWidget> owner(content);  // and the window is another
  return content;
}

void SetContentOf(GtkWindow* window, GtkWidget* content) {
  g_object_set(window, IsOfLibadwaita(window) ? "content" : "child", content, nullptr);
}

const char* ContentSignalOf(GtkWindow* window) {
  return IsOfLibadwaita(window) ? "notify::content" : "notify::child";
}

}  // namespace Platform
