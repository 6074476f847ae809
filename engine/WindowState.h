#pragma once
// What the window manager tells the game: input focus lost or the window minimised, and parts of
// the window uncovered. Written by the input event thread, read by the main thread through a
// snapshot taken once a frame, like the keyboard and mouse.

#include <cstdint>

union SDL_Event;

namespace orvel {

class WindowState {
public:
    // Event thread: counts SDL_ACTIVEEVENT losses of input focus or of the window (minimised),
    // and SDL_VIDEOEXPOSE. Other events are ignored.
    static void handle(const SDL_Event& event);
    // Main thread, once a frame: what happened since the last snapshot becomes this frame's.
    static void update();
    // Focus or the window was lost since the last frame.
    static bool focusLost() { return lostNow != lostBefore; }
    // The window was uncovered or got focus back since the last frame: its picture may be gone.
    static bool exposed() { return exposedNow != exposedBefore; }
    // Forgets everything counted, as at start-up.
    static void reset();

private:
    // Counters only ever grow, each written whole by the event thread.
    static volatile uint32_t lostLive;
    static volatile uint32_t exposedLive;
    static uint32_t lostNow, lostBefore;
    static uint32_t exposedNow, exposedBefore;
};

} // namespace orvel
