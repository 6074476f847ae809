#pragma once
// Packed 32-bit colours: channel layout and the per-channel mixing rules.

#include <cstdint>

namespace orvel {

// A colour is red in the low byte, then green, blue, alpha: the bytes R, G, B, A in memory,
// which GL_RGBA with GL_UNSIGNED_BYTE uploads without conversion. Channels are 0..255.
class Color {
public:
    static uint32_t rmask, gmask, bmask, amask;
    static uint8_t rshift, gshift, bshift, ashift;

    // Sets the masks and shifts to the layout above.
    static void init();

    // Channel arguments above 255 count as 255.
    static uint32_t getColor(uint16_t r, uint16_t g, uint16_t b, uint16_t a);

    static uint32_t getR(uint32_t c) { return (c & rmask) >> rshift; }
    static uint32_t getG(uint32_t c) { return (c & gmask) >> gshift; }
    static uint32_t getB(uint32_t c) { return (c & bmask) >> bshift; }
    static uint32_t getA(uint32_t c) { return (c & amask) >> ashift; }

    // `c` with one channel replaced by min(v, 255).
    static uint32_t setR(uint32_t c, uint16_t v);
    static uint32_t setG(uint32_t c, uint16_t v);
    static uint32_t setB(uint32_t c, uint16_t v);
    static uint32_t setA(uint32_t c, uint16_t v);

    // Per channel, alpha included, f in 0..255 (clamped):
    // blend: (c2 * (255 - f) + c1 * f) >> 8; 255 blended with itself gives 254, by design.
    static uint32_t blend(uint32_t c1, uint32_t c2, uint16_t f);
    // add: min(((c1 * f) >> 8) + c2, 255).
    static uint32_t add(uint32_t c1, uint32_t c2, uint16_t f);
    // multiply: (((c1 * f) >> 8) * c2) >> 8.
    static uint32_t multiply(uint32_t c1, uint32_t c2, uint16_t f);
};

} // namespace orvel
