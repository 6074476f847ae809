#include "game/replay/ReplayPlayback.h"

#include <cstring>

#include <SDL/SDL_keysym.h>

#include "engine/Orvel.h"

using orvel::Orvel;

namespace {

void hold(uint32_t* words, int key) { words[key >> 5] |= 1u << (key & 31); }

} // namespace

void ReplayPlayback::apply(const replay::Frame& frame) {
    Orvel::setFrameTime(frame.time - frame.sync, frame.time);
    Orvel::GEvent* e = Orvel::events;
    if (!e) return;
    memcpy(e->keysPrev, e->keys, sizeof e->keys);
    memset(e->keys, 0, sizeof e->keys);
    if (frame.keys & replay::KEY_W) hold(e->keys, SDLK_w);
    if (frame.keys & replay::KEY_A) hold(e->keys, SDLK_a);
    if (frame.keys & replay::KEY_S) hold(e->keys, SDLK_s);
    if (frame.keys & replay::KEY_D) hold(e->keys, SDLK_d);
    e->buttonsPrev = e->buttons;
    e->buttons = frame.buttons;
    e->mousePrevX = e->mouseX;
    e->mousePrevY = e->mouseY;
    e->mouseX = frame.mouseX;
    e->mouseY = frame.mouseY;
}
