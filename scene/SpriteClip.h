#pragma once
// A sprite's quad drawn only where its texels can change a pixel: a scissor box around the texels
// with alpha, for the blends under which a texel of alpha 0 leaves the target as it was. The quad,
// its texture coordinates and the planes the rasteriser sets up from them are untouched, so every
// pixel inside the box comes out exactly as before, and the pixels outside it were left as they
// were anyway. Only fewer pixels are shaded.

#include <cstdint>

namespace orvel {
class Texture;
}

// A rectangle in window coordinates, from the bottom-left as glScissor takes it.
struct WindowRect {
    int x, y, width, height;
};

class SpriteClip {
public:
    // On by default; a test turns it off to draw the same picture the plain way.
    static bool enabled;

    // Whether a node with these flags is blended, as the walk sets it up, with source alpha
    // weighting the texel and the target kept where that alpha is 0: BlendAlpha, BlendAdd and
    // the default, but not BlendColor, which darkens the target even there.
    static bool blendKeepsClearTexels(uint32_t flags);

    // The window rectangle outside which the quad (x0, y0)-(x1, y1) showing the whole image of
    // `texture`, drawn through the column-major `modelView` and `projection` into `viewport`
    // (x, y, width, height), changes no pixel: the box of its texels with alpha, one texel wider
    // for the linear filter, and one pixel wider again for rounding. An axis whose edge texels
    // hold alpha is not cut, since the repeat wrap samples them at the opposite edge. False when
    // the texels are unknown or a corner lies at or behind the eye.
    static bool windowRect(const orvel::Texture& texture, float x0, float y0, float x1, float y1,
                           const float* modelView, const float* projection, const int* viewport,
                           WindowRect& out);

    // Sets the scissor box to that rectangle for the matrices and viewport GL draws with now, and
    // turns the scissor test on. False, with nothing changed, when it is off, when no rectangle
    // applies or when the texture matrix is not the identity.
    static bool begin(const orvel::Texture& texture, float x0, float y0, float x1, float y1);
    // Turns the scissor test off after a begin() that returned true.
    static void end();
};
