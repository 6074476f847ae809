#include "engine/GfxUtil.h"

#include "engine/Color.h"
#include "engine/Math.h"
#include "engine/Surface.h"
#include "engine/Vector.h"

namespace orvel {

void GfxUtil::drawGradientCircle(Surface* surface, int cx, int cy, int r, uint32_t colorOuter,
                                 uint32_t colorInner) {
    for (int y = cy - r; y < cy + r; ++y) {
        for (int x = cx - r; x < cx + r; ++x) {
            float d = vec2((float)Math::abs(cx - x), (float)Math::abs(cy - y)).length();
            if (d > r) continue;
            float t = 1 - d / r;
            int red = (int)Math::sin_lerp(t, Color::getR(colorOuter), Color::getR(colorInner));
            int green = (int)Math::sin_lerp(t, Color::getG(colorOuter), Color::getG(colorInner));
            int blue = (int)Math::sin_lerp(t, Color::getB(colorOuter), Color::getB(colorInner));
            surface->setPixel(x, y, Color::getColor(red, green, blue, 255));
        }
    }
}

void GfxUtil::drawGradientEllipse(Surface*, int, int, int, int, uint32_t, uint32_t) {}

void GfxUtil::blurSurface(Surface* surface, int radius) {
    blurSurface(surface, 0, 0, surface->width, surface->height, radius);
}

void GfxUtil::blurSurface(Surface*, int, int, int, int, int) {}

} // namespace orvel
