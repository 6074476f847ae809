#pragma once
// Holding the frame clock while the game is paused: the held span never reaches
// Orvel::currentTime, and the first frame after the hold measures an ordinary frame. Without a
// hold the clock is SDL's tick count as it stands.

#include <cstdint>

namespace orvel {

class PauseClock {
public:
    // Holds the clock at SDL tick `realNow`: from now on gameTicks gives the game's time of that
    // moment. Nothing when it is held already.
    static void hold(uint32_t realNow);
    // Lets the clock run again from SDL tick `realNow`, the held span left out for good.
    // Nothing when it is not held.
    static void release(uint32_t realNow);
    static bool held() { return isHeld; }
    // The game's time for SDL tick `real`: `real` less every span held so far; while held, the
    // time at which the hold began.
    static uint32_t gameTicks(uint32_t real);
    // Milliseconds held so far, the running hold not counted.
    static uint32_t heldSpan() { return span; }
    // No hold, nothing held so far.
    static void reset();

    // A frame while held, for a main loop that shows a still picture: the input snapshot (and
    // the close request, as Orvel::update handles it) without a buffer swap or a clock step,
    // then a sleep that keeps such frames to one per `frameMs` since the last one began.
    static void idleFrame(uint32_t frameMs);

private:
    static bool isHeld;
    static uint32_t heldAt; // SDL tick of the running hold
    static uint32_t span;   // ms held before the running hold
    static uint32_t lastIdle;
};

} // namespace orvel
