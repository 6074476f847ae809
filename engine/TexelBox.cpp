#include "engine/TexelBox.h"

#include "engine/Color.h"
#include "engine/Surface.h"

namespace orvel {

namespace {

bool visible(const Surface& image, int x, int y) { return Color::getA(image.pixels[y * image.width + x]) != 0; }

bool rowHasAlpha(const Surface& image, int y) {
    for (int x = 0; x < image.width; ++x)
        if (visible(image, x, y)) return true;
    return false;
}

bool columnHasAlpha(const Surface& image, int x) {
    for (int y = 0; y < image.height; ++y)
        if (visible(image, x, y)) return true;
    return false;
}

} // namespace

TexelBox TexelBox::ofVisible(const Surface& image) {
    TexelBox box = {0, 0, image.width - 1, image.height - 1, true};
    // Sides are moved in while they hold nothing; an opaque image stops at its first texels.
    while (box.y0 <= box.y1 && !rowHasAlpha(image, box.y0)) ++box.y0;
    if (box.y0 > box.y1) return {0, 0, -1, -1, true};
    while (!rowHasAlpha(image, box.y1)) --box.y1;
    while (!columnHasAlpha(image, box.x0)) ++box.x0;
    while (!columnHasAlpha(image, box.x1)) --box.x1;
    return box;
}

TexelBox TexelBox::unknown() { return {0, 0, -1, -1, false}; }

} // namespace orvel
