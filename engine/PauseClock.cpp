#include "engine/PauseClock.h"

#include <cstdlib>

#include <SDL/SDL.h>

#include "engine/Gamepad.h"
#include "engine/Orvel.h"
#include "engine/WindowState.h"

namespace orvel {

bool PauseClock::isHeld = false;
uint32_t PauseClock::heldAt = 0;
uint32_t PauseClock::span = 0;
uint32_t PauseClock::lastIdle = 0;

void PauseClock::hold(uint32_t realNow) {
    if (isHeld) return;
    isHeld = true;
    heldAt = realNow;
    lastIdle = realNow;
}

void PauseClock::release(uint32_t realNow) {
    if (!isHeld) return;
    isHeld = false;
    span += realNow - heldAt;
}

uint32_t PauseClock::gameTicks(uint32_t real) {
    return (isHeld ? heldAt : real) - span;
}

void PauseClock::reset() {
    isHeld = false;
    heldAt = 0;
    span = 0;
    lastIdle = 0;
}

void PauseClock::idleFrame(uint32_t frameMs) {
    Orvel::GEvent* events = Orvel::events;
    if (events && events->closeRequested && Orvel::autoexit) {
        Orvel::quit();
        exit(0);
    }
    const uint32_t now = SDL_GetTicks();
    const uint32_t spent = now - lastIdle;
    if (spent < frameMs) SDL_Delay(frameMs - spent);
    lastIdle = SDL_GetTicks();
    if (events) events->update();
    WindowState::update();
    Gamepad::update();
}

} // namespace orvel
