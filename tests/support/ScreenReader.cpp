#include "tests/support/ScreenReader.h"

#include <unistd.h>

#include <X11/Xlib.h>
#include <X11/Xutil.h>

namespace e2e {

namespace {

const int INTERVAL_US = 2000;

} // namespace

ScreenReader::ScreenReader() : reader([this] { run(); }) {}

ScreenReader::~ScreenReader() {
    running = false;
    reader.join();
}

void ScreenReader::run() {
    Display* display = XOpenDisplay(nullptr);
    if (!display) return;
    const Window root = DefaultRootWindow(display);
    XWindowAttributes screen;
    XGetWindowAttributes(display, root, &screen);
    while (running) {
        if (XImage* image = XGetImage(display, root, 0, 0, screen.width, screen.height, AllPlanes, ZPixmap)) {
            XDestroyImage(image);
            ++count;
        }
        usleep(INTERVAL_US);
    }
    XCloseDisplay(display);
}

} // namespace e2e
