#pragma once
// A flash of the whole screen, as the MegaNuke gives: the colour over the picture, fading away.
// With soft flashes set it peaks at SOFT_PEAK and comes at most three times a second, as the
// photosensitivity guidelines of game accessibility ask.

#include <cstdint>

#include "engine/Vector.h"

class Fader;

class ScreenFlash {
public:
    ScreenFlash() = delete;

    static constexpr float SOFT_PEAK = 0.3f;
    // ms from one soft flash to the next at least.
    static constexpr uint32_t SOFT_GAP_MS = 334;

    // Flashes `fader` in `color`, fading out over `ms`; as the settings soften it.
    static void flash(Fader& fader, const orvel::vec4& color, unsigned ms);

private:
    static uint32_t lastSoft; // ms of Orvel::currentTime of the last soft flash
    static bool softSeen;
};
