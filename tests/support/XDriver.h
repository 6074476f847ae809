#pragma once
// Drives the X server as a user would: keys, buttons and pointer through xdotool, window-manager
// requests through Xlib, and reads back what the window shows to the outside.

#include <functional>
#include <string>

namespace xdriver {

// The top-level X window of the open SDL video mode.
unsigned long sdlWindow();
// The window's name (its caption) as other X clients see it.
std::string windowName(unsigned long window);
// Sends the window manager's close request (WM_DELETE_WINDOW), as a title-bar close button does.
void requestClose(unsigned long window);
// Runs xdotool with `args`; true when it succeeded.
bool xdotool(const std::string& args);
// The same on the X server `display` (":N"); "" means the one DISPLAY names.
bool xdotoolOn(const std::string& display, const std::string& args);
// The shell command `command` with DISPLAY set to `display` for each of its commands ("" leaves
// DISPLAY alone).
std::string commandOn(const std::string& display, const std::string& command);
// Polls `condition` every 2 ms until it holds or `timeoutMs` passes; returns the last result.
bool waitFor(const std::function<bool()>& condition, int timeoutMs = 5000);

} // namespace xdriver
