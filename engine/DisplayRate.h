#pragma once
// The refresh rate of the display the game runs on.

namespace orvel {

class DisplayRate {
public:
    DisplayRate() = delete;

    // Taken where the rate cannot be read.
    static const int FALLBACK_HZ = 60;

    // The refresh rate of the X display's current mode (XRandR), in whole frames a second;
    // FALLBACK_HZ without a display, without RandR, or where it reports no rate.
    static int refreshHz();
};

} // namespace orvel
