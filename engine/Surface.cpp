#include "engine/Surface.h"

#include <algorithm>
#include <cstring>

#include "engine/Math.h"

namespace orvel {

Surface::Surface(int w, int h) : pixels(nullptr), width(std::max(w, 1)), height(std::max(h, 1)) {
    pixels = new uint32_t[(size_t)width * height]();
}

Surface::Surface(int w, int h, Unfilled) : pixels(nullptr), width(std::max(w, 1)), height(std::max(h, 1)) {
    pixels = new uint32_t[(size_t)width * height];
}

Surface::Surface(const Surface& other)
    : pixels(new uint32_t[(size_t)other.width * other.height]), width(other.width), height(other.height) {
    memcpy(pixels, other.pixels, sizeof(uint32_t) * width * height);
}

Surface::~Surface() { delete[] pixels; }

void Surface::setPixel(int x, int y, uint32_t c) {
    if (x < 0 || y < 0 || x >= width || y >= height) return;
    pixels[y * width + x] = c;
}

uint32_t Surface::getPixel(int x, int y) const {
    if (x < 0 || y < 0 || x >= width || y >= height) return 0;
    return pixels[y * width + x];
}

void Surface::copy(const Surface* src, int srcX, int srcY, int dstX, int dstY, int w, int h) {
    if (src == this || !src) return;
    if (w < 0) w = src->width;
    if (h < 0) h = src->height;
    if (w == 0 || h == 0) return;
    // Columns i whose source and destination both lie inside their surfaces; the rest is skipped.
    const int first = std::max({0, -srcX, -dstX});
    const int end = std::min({w, src->width - srcX, width - dstX});
    if (first >= end) return;
    for (int j = 0; j < h; ++j) {
        const int sy = srcY + j;
        const int dy = dstY + j;
        if (sy < 0 || sy >= src->height || dy < 0 || dy >= height) continue;
        memcpy(pixels + (size_t)dy * width + dstX + first, src->pixels + (size_t)sy * src->width + srcX + first,
               sizeof(uint32_t) * (size_t)(end - first));
    }
}

void Surface::replaceColor(uint32_t from, uint32_t to) {
    std::replace(pixels, pixels + (size_t)width * height, from, to);
}

int Surface::makeTilable(int border) { return Math::clampi(border, 1, (int)(std::min(width, height) * 0.5)); }

} // namespace orvel
