#include "engine/WindowState.h"

#include <SDL/SDL.h>

namespace orvel {

volatile uint32_t WindowState::lostLive = 0;
volatile uint32_t WindowState::exposedLive = 0;
uint32_t WindowState::lostNow = 0;
uint32_t WindowState::lostBefore = 0;
uint32_t WindowState::exposedNow = 0;
uint32_t WindowState::exposedBefore = 0;

void WindowState::handle(const SDL_Event& event) {
    if (event.type == SDL_VIDEOEXPOSE) {
        exposedLive = exposedLive + 1;
    } else if (event.type == SDL_ACTIVEEVENT) {
        const bool focusOrWindow = (event.active.state & (SDL_APPINPUTFOCUS | SDL_APPACTIVE)) != 0;
        if (!focusOrWindow) return;
        // A window that comes back must be drawn again; one that goes is a loss.
        if (event.active.gain)
            exposedLive = exposedLive + 1;
        else
            lostLive = lostLive + 1;
    }
}

void WindowState::update() {
    lostBefore = lostNow;
    lostNow = lostLive;
    exposedBefore = exposedNow;
    exposedNow = exposedLive;
}

void WindowState::reset() {
    lostLive = exposedLive = 0;
    lostNow = lostBefore = exposedNow = exposedBefore = 0;
}

} // namespace orvel
