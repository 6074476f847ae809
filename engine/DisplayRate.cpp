#include "engine/DisplayRate.h"

#include <X11/Xlib.h>
#include <X11/extensions/Xrandr.h>

namespace orvel {

int DisplayRate::refreshHz() {
    // A connection of its own, closed again at once: SDL's is busy with its event thread.
    Display* display = XOpenDisplay(nullptr);
    if (!display) return FALLBACK_HZ;
    int rate = 0, eventBase = 0, errorBase = 0;
    if (XRRQueryExtension(display, &eventBase, &errorBase)) {
        if (XRRScreenConfiguration* config = XRRGetScreenInfo(display, DefaultRootWindow(display))) {
            rate = XRRConfigCurrentRate(config);
            XRRFreeScreenConfigInfo(config);
        }
    }
    XCloseDisplay(display);
    return rate > 0 ? rate : FALLBACK_HZ;
}

} // namespace orvel
