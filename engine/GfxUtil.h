#pragma once
// Procedural drawing into Surfaces.

#include <cstdint>

namespace orvel {

class Surface;

class GfxUtil {
public:
    // Fills the disc of radius r around (cx, cy), opaque, from colorOuter at the rim to colorInner at
    // the centre with a sine ease; red, green and blue only. Pixels outside the disc keep their
    // value; the square's right column and bottom row are never touched; r <= 0 draws nothing.
    static void drawGradientCircle(Surface* surface, int cx, int cy, int radius, uint32_t colorOuter,
                                   uint32_t colorInner);

    // Declared for completeness; the game never needed them, so they draw nothing.
    static void drawGradientEllipse(Surface* surface, int cx, int cy, int rx, int ry, uint32_t colorOuter,
                                    uint32_t colorInner);
    static void blurSurface(Surface* surface, int radius);
    static void blurSurface(Surface* surface, int x, int y, int w, int h, int radius);

};

} // namespace orvel
