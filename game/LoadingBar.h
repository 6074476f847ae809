#pragma once
// What the window shows while the art loads: black, with a thin bar near the bottom that fills
// from left to right as files arrive, so the window never sits empty at start-up.

#include <cstdint>

class LoadingBar {
public:
    LoadingBar() = delete;

    // Window pixels: the bar's height, its gap above the bottom edge and from each side.
    static const int HEIGHT = 3;
    static const int BOTTOM_GAP = 48;
    static const int SIDE_GAP = 160;
    // ms: the least time between two shown frames, so that a swap that waits for the display's
    // refresh cannot slow the loading down much.
    static const uint32_t MIN_FRAME_MS = 30;

    // Shows the bar filled to done / total (0 when total is 0, full from done >= total): the
    // first call and the full bar always, others when MIN_FRAME_MS has passed since the last.
    // Needs the GL context; leaves GL's state as it found it. Fits Resources::onProgress.
    static void show(unsigned done, unsigned total);

    // The filled part's width in pixels for done of total on a window `width` pixels wide.
    static int filledWidth(unsigned done, unsigned total, int width);

    // Frames shown so far.
    static unsigned framesShown;

    // Where the bar reads the time in ms: SDL_GetTicks, or a clock a test steps itself.
    static uint32_t (*clock)();
    // Forgets the frames shown, so that the next call shows one whatever the time.
    static void reset();
};
