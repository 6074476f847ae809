#pragma once
// Drives the game from a replay's frames: each one puts back the clock and the input that an
// update read when the game was played, so that the same code runs the same way again.

#include "game/replay/ReplayFormat.h"

class ReplayPlayback {
public:
    // Puts Orvel's clock (currentTime, lastTime, sync, sync16) and its input snapshot (the ship's
    // keys, the mouse buttons and the pointer, the frame before kept as the previous ones) as
    // the update that read `frame` found them. Every other key is up.
    static void apply(const replay::Frame& frame);
};
