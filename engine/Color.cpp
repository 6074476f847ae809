#include "engine/Color.h"

#include <algorithm>

namespace orvel {

uint32_t Color::rmask = 0x000000FF;
uint32_t Color::gmask = 0x0000FF00;
uint32_t Color::bmask = 0x00FF0000;
uint32_t Color::amask = 0xFF000000;
uint8_t Color::rshift = 0;
uint8_t Color::gshift = 8;
uint8_t Color::bshift = 16;
uint8_t Color::ashift = 24;

namespace {

uint32_t clampChannel(uint32_t v) { return std::min<uint32_t>(v, 255); }

uint32_t replaceChannel(uint32_t c, uint32_t mask, uint8_t shift, uint16_t v) {
    return (c & ~mask) | ((clampChannel(v) << shift) & mask);
}

// Applies `mix` to each of the four channels of c1 and c2 and packs the results.
template <typename Mix>
uint32_t mixChannels(uint32_t c1, uint32_t c2, Mix mix) {
    return Color::getColor(mix(Color::getR(c1), Color::getR(c2)), mix(Color::getG(c1), Color::getG(c2)),
                           mix(Color::getB(c1), Color::getB(c2)), mix(Color::getA(c1), Color::getA(c2)));
}

} // namespace

void Color::init() {
    rmask = 0x000000FF;
    gmask = 0x0000FF00;
    bmask = 0x00FF0000;
    amask = 0xFF000000;
    rshift = 0;
    gshift = 8;
    bshift = 16;
    ashift = 24;
}

uint32_t Color::getColor(uint16_t r, uint16_t g, uint16_t b, uint16_t a) {
    return ((clampChannel(r) << rshift) & rmask) | ((clampChannel(g) << gshift) & gmask) |
           ((clampChannel(b) << bshift) & bmask) | ((clampChannel(a) << ashift) & amask);
}

uint32_t Color::setR(uint32_t c, uint16_t v) { return replaceChannel(c, rmask, rshift, v); }
uint32_t Color::setG(uint32_t c, uint16_t v) { return replaceChannel(c, gmask, gshift, v); }
uint32_t Color::setB(uint32_t c, uint16_t v) { return replaceChannel(c, bmask, bshift, v); }
uint32_t Color::setA(uint32_t c, uint16_t v) { return replaceChannel(c, amask, ashift, v); }

uint32_t Color::blend(uint32_t c1, uint32_t c2, uint16_t f) {
    uint32_t w = clampChannel(f), g = 255 - w;
    return mixChannels(c1, c2, [w, g](uint32_t a, uint32_t b) { return (b * g + a * w) >> 8; });
}

uint32_t Color::add(uint32_t c1, uint32_t c2, uint16_t f) {
    uint32_t w = clampChannel(f);
    return mixChannels(c1, c2, [w](uint32_t a, uint32_t b) { return std::min<uint32_t>(((a * w) >> 8) + b, 255); });
}

uint32_t Color::multiply(uint32_t c1, uint32_t c2, uint16_t f) {
    uint32_t w = clampChannel(f);
    return mixChannels(c1, c2, [w](uint32_t a, uint32_t b) { return (((a * w) >> 8) * b) >> 8; });
}

} // namespace orvel
