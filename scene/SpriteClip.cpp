#include "scene/SpriteClip.h"

#include <cmath>

#include "engine/GL.h"
#include "engine/Texture.h"
#include "scene/Drawable.h"

using orvel::TexelBox;
using orvel::Texture;

bool SpriteClip::enabled = true;

namespace {

// Texel coordinates [from, to] along one axis that can change a pixel: the texels with alpha
// and one more on each side, which the linear filter blends with them. The whole image
// [0, imageTexels] when an edge texel has alpha: the repeat wrap blends it into the other edge.
void texelRange(int first, int last, int textureTexels, double imageTexels, double& from, double& to) {
    if (first >= 1 && last <= textureTexels - 2) {
        from = first - 1;
        to = last + 2;
    } else {
        from = 0;
        to = imageTexels;
    }
}

// Keeps window coordinates within a few pixels of the viewport, so that they convert to int.
double nearViewport(double v, int start, int length) {
    return std::fmax((double)start - 2.0, std::fmin(v, (double)start + length + 2.0));
}

} // namespace

bool SpriteClip::blendKeepsClearTexels(uint32_t flags) {
    return blendOf(flags) != BlendColor;
}

bool SpriteClip::windowRect(const Texture& texture, float x0, float y0, float x1, float y1, const float* modelView,
                            const float* projection, const int* viewport, WindowRect& out) {
    const TexelBox& box = texture.visible;
    if (!box.known) return false;
    if (box.isEmpty()) {
        // Nothing in the image can change a pixel.
        out = WindowRect{viewport[0], viewport[1], 0, 0};
        return true;
    }
    const double imageWidth = (double)texture.width * texture.sScale;
    const double imageHeight = (double)texture.height * texture.tScale;
    double u[2], v[2];
    texelRange(box.x0, box.x1, texture.width, imageWidth, u[0], u[1]);
    texelRange(box.y0, box.y1, texture.height, imageHeight, v[0], v[1]);

    double minX = INFINITY, minY = INFINITY, maxX = -INFINITY, maxY = -INFINITY;
    for (int i = 0; i < 2; ++i) {
        for (int j = 0; j < 2; ++j) {
            const double x = x0 + u[i] / imageWidth * ((double)x1 - x0);
            const double y = y0 + v[j] / imageHeight * ((double)y1 - y0);
            double eye[4], clip[4];
            for (int r = 0; r < 4; ++r) eye[r] = modelView[r] * x + modelView[4 + r] * y + modelView[12 + r];
            for (int r = 0; r < 4; ++r)
                clip[r] = projection[r] * eye[0] + projection[4 + r] * eye[1] + projection[8 + r] * eye[2] +
                          projection[12 + r] * eye[3];
            if (!(clip[3] > 0.0)) return false;
            const double wx = viewport[0] + (clip[0] / clip[3] + 1.0) * 0.5 * viewport[2];
            const double wy = viewport[1] + (clip[1] / clip[3] + 1.0) * 0.5 * viewport[3];
            if (!std::isfinite(wx) || !std::isfinite(wy)) return false;
            minX = std::fmin(minX, wx);
            maxX = std::fmax(maxX, wx);
            minY = std::fmin(minY, wy);
            maxY = std::fmax(maxY, wy);
        }
    }
    const int left = (int)std::floor(nearViewport(minX, viewport[0], viewport[2])) - 1;
    const int right = (int)std::ceil(nearViewport(maxX, viewport[0], viewport[2])) + 1;
    const int bottom = (int)std::floor(nearViewport(minY, viewport[1], viewport[3])) - 1;
    const int top = (int)std::ceil(nearViewport(maxY, viewport[1], viewport[3])) + 1;
    out = WindowRect{left, bottom, right - left, top - bottom};
    return true;
}

bool SpriteClip::begin(const Texture& texture, float x0, float y0, float x1, float y1) {
    if (!enabled || !texture.visible.known) return false;
    GLfloat modelView[16], projection[16], textureMatrix[16];
    GLint viewport[4];
    glGetFloatv(GL_TEXTURE_MATRIX, textureMatrix);
    for (int i = 0; i < 16; ++i) {
        if (textureMatrix[i] != (i % 5 == 0 ? 1.0f : 0.0f)) return false;
    }
    glGetFloatv(GL_MODELVIEW_MATRIX, modelView);
    glGetFloatv(GL_PROJECTION_MATRIX, projection);
    glGetIntegerv(GL_VIEWPORT, viewport);
    WindowRect rect;
    if (!windowRect(texture, x0, y0, x1, y1, modelView, projection, viewport, rect)) return false;
    glScissor(rect.x, rect.y, rect.width, rect.height);
    glEnable(GL_SCISSOR_TEST);
    return true;
}

void SpriteClip::end() { glDisable(GL_SCISSOR_TEST); }
