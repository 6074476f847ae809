#include "tests/support/DamageCounter.h"

#include <chrono>

#include <sys/select.h>

#include <X11/Xlib.h>
#include <X11/extensions/Xdamage.h>

namespace e2e {

DamageCounter::DamageCounter() : display(XOpenDisplay(nullptr)), damage(0), eventBase(0) {
    if (!display) return;
    int errorBase = 0;
    if (!XDamageQueryExtension(display, &eventBase, &errorBase)) {
        XCloseDisplay(display);
        display = nullptr;
        return;
    }
    // One report for each request that damages the screen, however many rectangles it covers.
    damage = XDamageCreate(display, DefaultRootWindow(display), XDamageReportRawRectangles);
    XSync(display, False);
}

DamageCounter::~DamageCounter() {
    if (!display) return;
    XDamageDestroy(display, damage);
    XCloseDisplay(display);
}

int DamageCounter::countFor(int ms) {
    if (!display) return -1;
    // What came before the count starts is not counted.
    XSync(display, False);
    while (XPending(display)) {
        XEvent event;
        XNextEvent(display, &event);
    }
    int requests = 0;
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(ms);
    for (;;) {
        while (XPending(display)) {
            XEvent event;
            XNextEvent(display, &event);
            if (event.type != eventBase + XDamageNotify) continue;
            // The last report of a request says no more follow.
            if (!reinterpret_cast<XDamageNotifyEvent*>(&event)->more) ++requests;
        }
        const auto now = std::chrono::steady_clock::now();
        if (now >= end) break;
        const long left = (long)std::chrono::duration_cast<std::chrono::microseconds>(end - now).count();
        fd_set fds;
        FD_ZERO(&fds);
        FD_SET(ConnectionNumber(display), &fds);
        timeval wait{left / 1000000, left % 1000000};
        select(ConnectionNumber(display) + 1, &fds, nullptr, nullptr, &wait);
    }
    return requests;
}

} // namespace e2e
