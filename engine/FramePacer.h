#pragma once
// Frames at most at a cap where the display does not pace them. With vertical sync the buffer
// swap waits for the display, and a frame's own time (its work and the swap, without any sleep of
// ours) is never shorter than the display's period. Where the swap does not wait (no vertical
// sync: a virtual machine, Xvfb, a driver that ignores swap control) frames come as fast as they
// can be drawn; once the median own time of the last WINDOW frames is below MARGIN of the cap's
// period, the pacer sleeps after each swap until the cap's next frame is due.

#include <cstdint>

namespace orvel {

class FramePacer {
public:
    // Frames looked at.
    static const unsigned WINDOW = 30;
    // The share of the cap's period under which a frame's own time shows that nothing waited.
    static constexpr double MARGIN = 0.9;

    // Microseconds on a steady clock, and a sleep of microseconds; tests put in their own.
    static uint64_t (*clock)();
    static void (*sleep)(uint64_t us);

    FramePacer();

    // At most `fps` frames a second; 0 for no cap. Forgets what it has seen.
    void setCap(int fps);
    int cap() const { return fps; }

    // After each buffer swap. Sleeps until the next frame is due when the frames are unpaced,
    // and returns the microseconds slept.
    uint64_t frameDone();

    // Whether the last WINDOW frames showed that nothing paces them.
    bool unpaced() const { return isUnpaced; }

private:
    int fps;
    uint64_t periodUs;
    uint64_t lastEnd;  // the clock when the last frame (and its sleep) ended; 0 before the first
    uint64_t deadline; // when the last frame was due
    uint32_t ownTimes[WINDOW];
    unsigned seen;
    bool isUnpaced;
};

} // namespace orvel
