#include "game/Pause.h"

#include <SDL/SDL_keysym.h>
#include <SDL/SDL_mixer.h>

#include "engine/Orvel.h"
#include "engine/PauseClock.h"
#include "engine/WindowState.h"
#include "game/Game.h"
#include "game/GamepadControl.h"
#include "game/Main.h"
#include "game/Resources.h"
#include "game/SoundEffects.h"
#include "game/desktop/SettingsPanel.h"
#include "scene/DirectScene2D.h"
#include "scene/Text.h"

using orvel::Orvel;
using orvel::PauseClock;

Pause g_pause;

const char* const Pause::KEYBOARD_HINT = "P to resume, Escape to quit";
const char* const Pause::PAD_HINT = "Start to resume, hold Back to quit";

namespace {

// The hint's glyphs against the title's.
const float HINT_SCALE = 0.5f;
// Screen pixels from the title's centre down to the hint's.
const float HINT_GAP = 60.0f;

// A mouse button clicked off the settings panel: one the pad holds for a trigger does not count,
// so that firing does not end a pause the pad's Start began, and a click on the panel changes a
// setting instead.
bool clickOutsidePanel(const SettingsPanel* panel) {
    if (panel && SettingsPanel::contains(Orvel::mouseX(), Orvel::mouseY())) return false;
    for (int b = 1; b <= 3; ++b)
        if (Orvel::mousePressed(b) && !g_gamepad.holdsButton(b)) return true;
    return false;
}

} // namespace

Pause::Pause()
    : panel(nullptr), paused(false), redraw(false), dim(), overlay(nullptr), title(nullptr), hint(nullptr) {
    // Held at DIM: a fade that ended long ago at the same opacity it started from.
    dim.from = dim.to = dim.current = DIM;
    dim.startTime = dim.endTime = 0;
    dim.color = orvel::vec4(0.0f, 0.0f, 0.0f, 1.0f);
}

void Pause::update(uint32_t realNow) {
    const bool playing = g_game && g_game->running;
    if (!paused) {
        if (playing && (Orvel::keyPressed(SDLK_p) || orvel::WindowState::focusLost())) enter(realNow);
        return;
    }
    if (orvel::WindowState::exposed()) redraw = true;
    if (panel && panel->update(realNow)) redraw = true;
    if (Orvel::keyPressed(SDLK_p) || clickOutsidePanel(panel)) leave(realNow);
}

void Pause::enter(uint32_t realNow) {
    if (paused) return;
    paused = true;
    redraw = true;
    PauseClock::hold(realNow);
    if (music) Mix_PauseMusic();
    g_sound.pauseAll();
}

void Pause::leave(uint32_t realNow) {
    if (!paused) return;
    paused = false;
    redraw = false;
    PauseClock::release(realNow);
    if (panel) panel->pauseEnded();
    if (music) Mix_ResumeMusic();
    g_sound.resumeAll();
}

void Pause::buildOverlay() {
    overlay = new DirectScene2D(-1, -1);
    overlay->debugDraw = false;
    const float cx = 0.5f * (float)Orvel::getScreenWidth();
    const float cy = 0.5f * (float)Orvel::getScreenHeight();
    title = new Text(Resources::font_big, "Paused");
    title->setHotSpot(Center);
    title->position = orvel::vec3(cx, cy, 0.0f);
    hint = new Text(Resources::font_big, KEYBOARD_HINT);
    hint->fontSize *= HINT_SCALE;
    hint->setText(KEYBOARD_HINT);
    hint->setHotSpot(Center);
    hint->position = orvel::vec3(cx, cy + HINT_GAP, 0.0f);
    overlay->add(title);
    overlay->add(hint);
}

void Pause::drawOverlay() {
    if (!overlay) buildOverlay();
    // Centred whatever its length, so the pad's words take the keyboard's place.
    hint->setText(g_gamepad.padLast ? PAD_HINT : KEYBOARD_HINT);
    dim.draw();
    overlay->draw();
    if (panel) panel->draw();
}
