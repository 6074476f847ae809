#include "game/desktop/ScreenFlash.h"

#include "engine/Orvel.h"
#include "game/desktop/Settings.h"
#include "scene/Fader.h"

uint32_t ScreenFlash::lastSoft = 0;
bool ScreenFlash::softSeen = false;

void ScreenFlash::flash(Fader& fader, const orvel::vec4& color, unsigned ms) {
    fader.color = color;
    if (!g_settings.softFlashes) {
        fader.fadeIn(ms);
        return;
    }
    const uint32_t now = orvel::Orvel::currentTime;
    // One flash too soon after the last is left out rather than shortened.
    if (softSeen && now - lastSoft < SOFT_GAP_MS) return;
    softSeen = true;
    lastSoft = now;
    fader.fadeInFrom(SOFT_PEAK, ms);
}
