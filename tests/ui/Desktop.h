#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>

#include <gtk/gtk.h>

namespace TestSupport {

// What stands in the place of the user: the pointer, the keys, and the eyes. Everything is done
// from outside, with the X server's own events; the program hears of it when its loop turns.

// Lets the program's loop turn until `condition` holds; gives its last answer after half a minute.
bool Until(const std::function<bool()>& condition);

// Lets the loop turn for that long, where a test is about nothing happening.
void LetPass(std::chrono::milliseconds time);

// Points of a widget, from its upper left corner.
void MoveTo(GtkWidget* widget, double x, double y);
void ClickAt(GtkWidget* widget, double x, double y);
void Click(GtkWidget* widget);  // in its middle

// Presses the button at one point, moves in small steps, and lets go at the other.
void Drag(GtkWidget* widget, double fromX, double fromY, double toX, double toY);

void PressKey(const std::string& name);
void TypeText(const std::string& text);

void Minimize(GtkWindow* window);
void Restore(GtkWindow* window);

// The colour that is seen at a point of a widget, as 0xRRGGBB.
std::uint32_t ColourAt(GtkWidget* widget, double x, double y);

// Saves what is seen of the display as <name>.png where screenshots are kept.
void Photograph(const std::string& name);

// The first widget of that type and label below `widget`; null when there is none.
GtkWidget* FindButton(GtkWidget* widget, const std::string& label);

// The first below `widget` whose type has that name.
GtkWidget* FindByType(GtkWidget* widget, const std::string& type);

// The modal dialog over the window; null when there is none that is seen.
GtkWindow* DialogOf(GtkWindow* window);

}  // namespace TestSupport
