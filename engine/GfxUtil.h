#pragma once
// Procedural drawing into Surfaces, and building shader programs from files.

#include <cstdint>

namespace orvel {

class ShaderProgram;
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

    // A new, linked program (never null; the caller owns it) from dir/name.vert, .geom and
    // .frag, those that exist. A missing vertex or fragment file falls back to the default
    // stage, a missing geometry file means no geometry stage. The Shader objects it creates
    // are owned by nobody and live on. A NUL byte in a file ends the text of its 4095-byte chunk.
    static ShaderProgram* loadShaderFromDisk(const char* dir, const char* name);
};

} // namespace orvel
