#include "tests/support/XDriver.h"

#include <cstdlib>
#include <cstring>

#include <SDL/SDL.h>
#include <SDL/SDL_syswm.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>

namespace xdriver {

unsigned long sdlWindow() {
    SDL_SysWMinfo info;
    memset(&info, 0, sizeof info);
    SDL_VERSION(&info.version);
    if (SDL_GetWMInfo(&info) != 1) return 0;
    return info.info.x11.wmwindow;
}

std::string windowName(unsigned long window) {
    Display* display = XOpenDisplay(nullptr);
    if (!display) return "";
    std::string result;
    char* name = nullptr;
    if (XFetchName(display, window, &name) && name) {
        result = name;
        XFree(name);
    }
    XCloseDisplay(display);
    return result;
}

void requestClose(unsigned long window) {
    Display* display = XOpenDisplay(nullptr);
    if (!display) return;
    XEvent event;
    memset(&event, 0, sizeof event);
    event.xclient.type = ClientMessage;
    event.xclient.window = window;
    event.xclient.message_type = XInternAtom(display, "WM_PROTOCOLS", False);
    event.xclient.format = 32;
    event.xclient.data.l[0] = (long)XInternAtom(display, "WM_DELETE_WINDOW", False);
    event.xclient.data.l[1] = CurrentTime;
    XSendEvent(display, window, False, NoEventMask, &event);
    XFlush(display);
    XCloseDisplay(display);
}

bool xdotool(const std::string& args) { return xdotoolOn("", args); }

bool xdotoolOn(const std::string& display, const std::string& args) {
    return system(commandOn(display, "xdotool " + args).c_str()) == 0;
}

std::string commandOn(const std::string& display, const std::string& command) {
    return display.empty() ? command : "export DISPLAY='" + display + "'; " + command;
}

bool waitFor(const std::function<bool()>& condition, int timeoutMs) {
    for (int waited = 0; waited < timeoutMs; waited += 2) {
        if (condition()) return true;
        SDL_Delay(2);
    }
    return condition();
}

} // namespace xdriver
