#include "game/replay/ReplayRecorder.h"

#include <SDL/SDL_keysym.h>

#include "engine/Orvel.h"
#include "game/Game.h"
#include "game/ScoreCounter.h"
#include "game/desktop/Settings.h"
#include "game/replay/StateHash.h"

using orvel::Orvel;

namespace {

// The mouse buttons the ship reads: 1 fires the plasma, 3 the laser.
const uint8_t SHIP_BUTTONS = 1u << 1 | 1u << 3;

int16_t clampToShort(int v) { return (int16_t)(v < INT16_MIN ? INT16_MIN : v > INT16_MAX ? INT16_MAX : v); }

} // namespace

ReplayRecorder::ReplayRecorder() : active(false) {}

replay::Frame ReplayRecorder::currentInput() {
    replay::Frame f;
    f.time = Orvel::currentTime;
    f.sync = Orvel::currentTime - Orvel::lastTime;
    if (!Orvel::events) return f;
    f.keys = (uint8_t)((Orvel::keyDown(SDLK_w) ? replay::KEY_W : 0) | (Orvel::keyDown(SDLK_a) ? replay::KEY_A : 0) |
                       (Orvel::keyDown(SDLK_s) ? replay::KEY_S : 0) | (Orvel::keyDown(SDLK_d) ? replay::KEY_D : 0));
    f.buttons = (uint8_t)(Orvel::events->buttons & SHIP_BUTTONS);
    f.mouseX = clampToShort(Orvel::events->mouseX);
    f.mouseY = clampToShort(Orvel::events->mouseY);
    return f;
}

void ReplayRecorder::begin(uint32_t seed) {
    replay::Header header;
    header.gameVersion = NIGHTVECTOR_VERSION;
    header.seed = seed;
    header.screenWidth = (uint16_t)Orvel::getScreenWidth();
    header.screenHeight = (uint16_t)Orvel::getScreenHeight();
    header.screenShake = g_settings.screenShake;
    header.softFlashes = g_settings.softFlashes;
    writer.begin(header);
    active = true;
}

void ReplayRecorder::beforeUpdate() {
    if (active) pending = currentInput();
}

void ReplayRecorder::afterUpdate(const Game& game) {
    if (!active) return;
    pending.hasHash = (writer.frameCount() + 1) % HASH_EVERY == 0;
    pending.hash = pending.hasHash ? stateHash(game) : 0;
    writer.add(pending);
}

void ReplayRecorder::finish(const Game& game) {
    if (!active) return;
    replay::Result result;
    result.score = game.scoreCounter ? game.scoreCounter->value : 0;
    result.wave = game.wave;
    result.lives = game.lives;
    writer.finish(result);
    active = false;
}
