#include "ui/Desktop.h"

#include <chrono>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <vector>

#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <gdk/x11/gdkx.h>

#include "platform/gtk/Toplevels.h"
#include "support/WaitUntil.h"

namespace TestSupport {
namespace {

using Arguments = std::vector<std::string>;

constexpr std::chrono::seconds kDeadline{30};

void RunProgram(const Arguments& arguments) {
  std::vector<char*> pointers;
  for (const std::string& argument : arguments)
    pointers.push_back(const_cast<char*>(argument.data()));
  pointers.push_back(nullptr);
  int status = 0;
  GError* error = nullptr;
  const bool isStarted = g_spawn_sync(nullptr, pointers.data(), nullptr, G_SPAWN_SEARCH_PATH,
                                      nullptr, nullptr, nullptr, nullptr, &status, &error) != FALSE;
  if (!isStarted || g_spawn_check_wait_status(status, &error) == FALSE) {
    const std::string text = arguments.front() + ": " + error->message;
    g_error_free(error);
    throw std::runtime_error(text);
  }
}

void RunXdotool(Arguments arguments) {
  arguments.insert(arguments.begin(), "xdotool");
  RunProgram(arguments);
}

GdkSurface* SurfaceOf(GtkWidget* widget) {
  return gtk_native_get_surface(gtk_widget_get_native(widget));
}

Window XWindowOf(GtkWidget* widget) { return gdk_x11_surface_get_xid(SurfaceOf(widget)); }

struct Pixel {
  int x = 0;
  int y = 0;
};

// Within the X window, whose lengths are pixels.
Pixel PixelOf(GtkWidget* widget, double x, double y) {
  GtkNative* native = gtk_widget_get_native(widget);
  double inNativeX = 0;
  double inNativeY = 0;
  gtk_widget_translate_coordinates(widget, GTK_WIDGET(native), x, y, &inNativeX, &inNativeY);
  double offsetX = 0;
  double offsetY = 0;
  gtk_native_get_surface_transform(native, &offsetX, &offsetY);
  const int scale = gtk_widget_get_scale_factor(widget);
  return {static_cast<int>(std::lround((inNativeX + offsetX) * scale)),
          static_cast<int>(std::lround((inNativeY + offsetY) * scale))};
}

Arguments MovingTo(GtkWidget* widget, double x, double y) {
  const Pixel pixel = PixelOf(widget, x, y);
  return {"mousemove", "--window", std::to_string(XWindowOf(widget)), std::to_string(pixel.x),
          std::to_string(pixel.y)};
}

void Append(Arguments& arguments, const Arguments& more) {
  arguments.insert(arguments.end(), more.begin(), more.end());
}

// A connection of the test's own, so that GTK's is left alone.
Display* OwnDisplay() {
  static Display* const display = XOpenDisplay(nullptr);
  return display;
}

GtkWidget* Find(GtkWidget* widget, const std::function<bool(GtkWidget*)>& fits) {
  if (fits(widget)) return widget;
  for (GtkWidget* child = gtk_widget_get_first_child(widget); child != nullptr;
       child = gtk_widget_get_next_sibling(child)) {
    if (GtkWidget* found = Find(child, fits)) return found;
  }
  return nullptr;
}

}  // namespace

bool Until(const std::function<bool()>& condition) {
  return WaitUntil(
      [&condition] {
        while (g_main_context_iteration(nullptr, FALSE) != FALSE) {
        }
        return condition();
      },
      kDeadline);
}

void LetPass(std::chrono::milliseconds time) {
  const auto end = std::chrono::steady_clock::now() + time;
  Until([end] { return std::chrono::steady_clock::now() >= end; });
}

void MoveTo(GtkWidget* widget, double x, double y) { RunXdotool(MovingTo(widget, x, y)); }

void ClickAt(GtkWidget* widget, double x, double y) {
  Arguments arguments = MovingTo(widget, x, y);
  Append(arguments, {"click", "1"});
  RunXdotool(arguments);
}

void Click(GtkWidget* widget) {
  ClickAt(widget, gtk_widget_get_width(widget) / 2.0, gtk_widget_get_height(widget) / 2.0);
}

void Drag(GtkWidget* widget, double fromX, double fromY, double toX, double toY) {
  constexpr int kSteps = 8;
  Arguments arguments = MovingTo(widget, fromX, fromY);
  Append(arguments, {"mousedown", "1"});
  for (int step = 1; step <= kSteps; ++step) {
    const double part = static_cast<double>(step) / kSteps;
    Append(arguments, MovingTo(widget, fromX + (toX - fromX) * part, fromY + (toY - fromY) * part));
  }
  Append(arguments, {"mouseup", "1"});
  RunXdotool(arguments);
}

void PressKey(const std::string& name) { RunXdotool({"key", name}); }

void TypeText(const std::string& text) { RunXdotool({"type", "--delay", "5", text}); }

void Minimize(GtkWindow* window) {
  RunXdotool({"windowminimize", std::to_string(XWindowOf(GTK_WIDGET(window)))});
}

void Restore(GtkWindow* window) {
  const std::string id = std::to_string(XWindowOf(GTK_WIDGET(window)));
  RunXdotool({"windowmap", id, "windowactivate", id});
}

std::uint32_t ColourAt(GtkWidget* widget, double x, double y) {
  const Pixel pixel = PixelOf(widget, x, y);
  Display* display = OwnDisplay();
  Window child = 0;
  int rootX = 0;
  int rootY = 0;
  const Window root = DefaultRootWindow(display);
  XTranslateCoordinates(display, XWindowOf(widget), root, pixel.x, pixel.y, &rootX, &rootY, &child);
  XImage* image = XGetImage(display, root, rootX, rootY, 1, 1, AllPlanes, ZPixmap);
  if (image == nullptr) return 0;
  const auto colour = static_cast<std::uint32_t>(XGetPixel(image, 0, 0)) & 0xFFFFFF;
  XDestroyImage(image);
  return colour;
}

void Photograph(const std::string& name) {
  const char* folder = std::getenv("QEX_UI_SHOTS");
  if (folder == nullptr) return;
  const char* variant = std::getenv("QEX_UI_VARIANT");
  std::filesystem::create_directories(folder);
  const std::string file = std::string(folder) + "/" + name +
                           (variant == nullptr ? "" : std::string("-") + variant) + ".png";
  RunProgram({"import", "-window", "root", file});
}

GtkWidget* FindButton(GtkWidget* widget, const std::string& label) {
  GtkWidget* text = Find(widget, [&label](GtkWidget* each) {
    return GTK_IS_LABEL(each) && label == gtk_label_get_text(GTK_LABEL(each)) &&
           gtk_widget_get_ancestor(each, GTK_TYPE_BUTTON) != nullptr;
  });
  return text == nullptr ? nullptr : gtk_widget_get_ancestor(text, GTK_TYPE_BUTTON);
}

GtkWidget* FindByType(GtkWidget* widget, const std::string& type) {
  return Find(widget, [&type](GtkWidget* each) { return type == G_OBJECT_TYPE_NAME(each); });
}

GtkWindow* DialogOf(GtkWindow* window) {
  GtkWindow* dialog = Platform::DialogOver(window);
  const bool isSeen = dialog != nullptr && gtk_widget_get_mapped(GTK_WIDGET(dialog)) != FALSE &&
                      gtk_window_is_active(dialog) != FALSE;
  return isSeen ? dialog : nullptr;
}

}  // namespace TestSupport
