#pragma once
// CPU-side image: a plain array of packed 32-bit colours (see Color), top row first.

#include <cstdint>

namespace orvel {

class Surface {
public:
    uint32_t* pixels; // owned; width * height pixels, row-major, top row first
    int width;        // at least 1
    int height;       // at least 1

    // All pixels transparent black; sizes below 1 become 1.
    Surface(int width, int height);
    // The pixels left as the heap gives them, for a caller that writes every one of them next
    // (an image being decoded): large images skip a pass over their memory at start-up.
    struct Unfilled {};
    Surface(int width, int height, Unfilled);
    Surface(const Surface& other);
    Surface& operator=(const Surface&) = delete;
    ~Surface();

    // Writes outside the surface are ignored.
    void setPixel(int x, int y, uint32_t c);
    // Reads outside the surface give 0.
    uint32_t getPixel(int x, int y) const;

    // Copies a w x h block of `src` from (srcX, srcY) to (dstX, dstY) without blending: alpha is
    // copied like the other channels. Negative w or h mean src's whole width or height. Source
    // pixels outside src are skipped, destination pixels outside this surface dropped. Copying
    // from this surface into itself does nothing.
    void copy(const Surface* src, int srcX, int srcY, int dstX, int dstY, int w, int h);

    // Every pixel equal to `from` becomes `to`.
    void replaceColor(uint32_t from, uint32_t to);

    // Returns the border clamped to [1, min(width, height) / 2] and changes no pixel: the
    // tiling itself was never needed by the game, so only the computation stays.
    int makeTilable(int border);
};

} // namespace orvel
