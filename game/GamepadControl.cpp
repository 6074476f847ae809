#include "game/GamepadControl.h"

#include <cmath>

#include <SDL/SDL_joystick.h>
#include <SDL/SDL_keysym.h>

#include "engine/Gamepad.h"
#include "engine/Orvel.h"
#include "game/Game.h"
#include "game/Main.h"
#include "game/Player.h"
#include "scene/Scene2D.h"

using orvel::Gamepad;
using orvel::Orvel;

GamepadControl g_gamepad;

namespace {

const float FULL_TILT = 32767.0f;
const int16_t TRIGGER_REST = -32000;
// SDL mouse buttons the ship fires with.
const int PLASMA_BUTTON = 1;
const int LASER_BUTTON = 3;

const unsigned KEY_W = 1, KEY_A = 2, KEY_S = 4, KEY_D = 8;
// The keys of the eight directions, from straight right turning clockwise on the screen (y down).
const unsigned DIRECTION_KEYS[8] = {KEY_D, KEY_D | KEY_S, KEY_S, KEY_S | KEY_A,
                                    KEY_A, KEY_A | KEY_W, KEY_W, KEY_W | KEY_D};

void hold(uint32_t* words, int key) {
    words[key >> 5] |= 1u << (key & 31);
}

bool axisPulled(int axis) {
    return axis >= 0 && Gamepad::axis(axis) > GamepadControl::TRIGGER_PULLED;
}

} // namespace

GamepadLayout GamepadControl::detectLayout(int axes, int buttons, const int16_t* resting) {
    const bool triggerAxes = axes >= 6 && resting[2] <= TRIGGER_REST && resting[5] <= TRIGGER_REST;
    if (triggerAxes) {
        const bool playStation = buttons >= 13;
        return GamepadLayout{0, 1, 3, 4, 2, 5, 4, 5, playStation ? 6 : -1, playStation ? 7 : -1,
                             playStation ? 8 : 6, playStation ? 9 : 7};
    }
    return GamepadLayout{0, 1, axes >= 4 ? 2 : -1, axes >= 4 ? 3 : -1, -1, -1, 4, 5, 6, 7, 8, 9};
}

unsigned GamepadControl::stickKeys(int16_t x, int16_t y) {
    const float fx = (float)x / FULL_TILT, fy = (float)y / FULL_TILT;
    if (std::sqrt(fx * fx + fy * fy) < DEAD_ZONE) return 0;
    const float eighth = (float)M_PI / 4.0f;
    const int sector = ((int)std::lround(std::atan2(fy, fx) / eighth) + 8) % 8;
    return DIRECTION_KEYS[sector];
}

unsigned GamepadControl::hatKeys(uint8_t hat) {
    return (hat & SDL_HAT_UP ? KEY_W : 0) | (hat & SDL_HAT_LEFT ? KEY_A : 0) | (hat & SDL_HAT_DOWN ? KEY_S : 0) |
           (hat & SDL_HAT_RIGHT ? KEY_D : 0);
}

GamepadControl::GamepadControl()
    : padAims(false), padLast(false), padButtons(0), aimX(AIM_NEAR), aimY(0.0f), mouseSeenX(-1), mouseSeenY(-1),
      backSince(0), backFired(false) {}

namespace {

// Whether the snapshot holds a key or a mouse button the player pressed this frame, before the
// pad writes its own into it.
bool pressedByHand(const Orvel::GEvent* e) {
    for (int i = 0; i < Orvel::GEvent::KEY_WORDS; ++i)
        if (e->keys[i] & ~e->keysPrev[i]) return true;
    return (e->buttons & ~e->buttonsPrev) != 0;
}

} // namespace

void GamepadControl::apply(uint32_t realNow) {
    Orvel::GEvent* e = Orvel::events;
    padButtons = 0;
    if (!e || (!Gamepad::present() && !Gamepad::used())) return;
    const bool byHand = pressedByHand(e) || e->mouseX != mouseSeenX || e->mouseY != mouseSeenY;
    const uint32_t buttonsBefore = e->buttons;
    int16_t resting[Gamepad::AXES];
    for (int i = 0; i < Gamepad::AXES; ++i) resting[i] = Gamepad::restingAxis(i);
    const GamepadLayout pad = detectLayout(Gamepad::axisCount(), Gamepad::buttonCount(), resting);

    const unsigned keys = stickKeys(Gamepad::axis(pad.leftX), Gamepad::axis(pad.leftY)) | hatKeys(Gamepad::hat());
    if (keys & KEY_W) hold(e->keys, SDLK_w);
    if (keys & KEY_A) hold(e->keys, SDLK_a);
    if (keys & KEY_S) hold(e->keys, SDLK_s);
    if (keys & KEY_D) hold(e->keys, SDLK_d);

    if (axisPulled(pad.rightTriggerAxis) || Gamepad::buttonDown(pad.rightShoulder) ||
        Gamepad::buttonDown(pad.rightTriggerButton))
        e->buttons |= 1u << PLASMA_BUTTON;
    if (axisPulled(pad.leftTriggerAxis) || Gamepad::buttonDown(pad.leftShoulder) ||
        Gamepad::buttonDown(pad.leftTriggerButton))
        e->buttons |= 1u << LASER_BUTTON;

    if (Gamepad::buttonDown(pad.start)) {
        hold(e->keys, SDLK_RETURN);
        hold(e->keys, SDLK_p);
    }

    if (!Gamepad::buttonDown(pad.back)) {
        backSince = 0;
        backFired = false;
    } else if (backSince == 0) {
        backSince = realNow ? realNow : 1;
    } else if (!backFired && realNow - backSince >= BACK_HOLD) {
        // One frame of Escape, as a key press would give.
        hold(e->keys, SDLK_ESCAPE);
        backFired = true;
    }

    padButtons = e->buttons & ~buttonsBefore;

    // The last one used owns the reticle: a moved mouse takes it back, a tilted stick takes it.
    // The snapshot holds the real pointer here, before this frame's aim is written over it.
    if (e->mouseX != mouseSeenX || e->mouseY != mouseSeenY) padAims = false;
    mouseSeenX = e->mouseX;
    mouseSeenY = e->mouseY;
    const float rx = (float)Gamepad::axis(pad.rightX) / FULL_TILT;
    const float ry = (float)Gamepad::axis(pad.rightY) / FULL_TILT;
    const float tilt = std::sqrt(rx * rx + ry * ry);
    const bool aiming = pad.rightX >= 0 && tilt >= DEAD_ZONE;
    // Whichever was used last, the pad or the keyboard and mouse, names the pause's keys.
    if (keys != 0 || padButtons != 0 || aiming || Gamepad::buttonDown(pad.start) || Gamepad::buttonDown(pad.back))
        padLast = true;
    else if (byHand)
        padLast = false;
    if (aiming) {
        const float reach = AIM_NEAR + (AIM_FAR - AIM_NEAR) * (std::fmin(tilt, 1.0f) - DEAD_ZONE) / (1.0f - DEAD_ZONE);
        aimX = rx / tilt * reach;
        aimY = ry / tilt * reach;
        padAims = true;
    }
    if (!padAims) return;
    float shipX = 0.5f * (float)Orvel::getScreenWidth(), shipY = 0.5f * (float)Orvel::getScreenHeight();
    if (g_game && g_game->player && g_world) {
        // Where the ship is drawn: worldToScreen scales after the camera's offset, and parts
        // from the picture once the camera zooms out with the ship's speed.
        const orvel::vec2 s = g_world->drawnPosition(g_game->player->position);
        shipX = s.x;
        shipY = s.y;
    }
    e->mouseX = (int)std::lround(shipX + aimX);
    e->mouseY = (int)std::lround(shipY + aimY);
}
