#include "engine/PointerGrab.h"

#include <SDL/SDL.h>
#include <SDL/SDL_syswm.h>
#include <X11/Xlib.h>

#include "engine/Orvel.h"

namespace orvel {

namespace {

// SDL's X connection and the window it draws in, with SDL's lock on that connection held: its
// event thread reads from the same connection. False, and nothing held, without an X window.
bool lockWindow(SDL_SysWMinfo& info) {
    SDL_VERSION(&info.version);
    if (SDL_GetWMInfo(&info) != 1 || info.subsystem != SDL_SYSWM_X11 || !info.info.x11.display) return false;
    info.info.x11.lock_func();
    return true;
}

} // namespace

PointerGrab::PointerGrab() : holding(false), letGo(false), wasFullscreen(false), retryIn(0) {}

void PointerGrab::update(bool wanted) {
    // SDL grabs the pointer itself as full screen starts and lets go as it ends.
    const bool modeChanged = Orvel::fullscreen != wasFullscreen;
    wasFullscreen = Orvel::fullscreen;
    if (modeChanged) holding = false;
    if (!wanted) {
        retryIn = 0;
        // SDL's grab belongs to this same client, so letting go of this one lets go of it too.
        if (!letGo || modeChanged) release();
        holding = false;
        letGo = true;
        return;
    }
    letGo = false;
    if (holding) return;
    if (retryIn > 0) {
        --retryIn;
        return;
    }
    holding = grab();
    if (!holding) retryIn = RETRY_FRAMES;
}

bool PointerGrab::grab() {
    SDL_SysWMinfo info;
    if (!lockWindow(info)) return false;
    Display* display = info.info.x11.display;
    const Window window = info.info.x11.window;
    // Confined to the picture's own window, which full screen centres in the black one.
    const int result =
        XGrabPointer(display, window, True, 0, GrabModeAsync, GrabModeAsync, window, None, CurrentTime);
    info.info.x11.unlock_func();
    return result == GrabSuccess;
}

void PointerGrab::release() {
    SDL_SysWMinfo info;
    if (!lockWindow(info)) return;
    XUngrabPointer(info.info.x11.display, CurrentTime);
    // SDL's unlock waits for X to have done what was asked.
    info.info.x11.unlock_func();
}

} // namespace orvel
