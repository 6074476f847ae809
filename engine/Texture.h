#pragma once
// One OpenGL texture object, and the running total of texture memory.

#include <cstdint>

#include "engine/TexelBox.h"

namespace orvel {

class Surface;

class Texture {
public:
    unsigned unit;   // texture unit enum (GL_TEXTURE0 + n) of the last bind
    unsigned id;     // GL texture name
    float sScale;    // fraction of the width that holds the image (< 1 when padded)
    float tScale;    // fraction of the height that holds the image
    uint32_t spare;  // unused by the engine; always 0
    int width;       // GL image size in texels, padded to powers of two for images
    int height;
    int depth;       // layers of a 3-D texture
    unsigned target; // GL_TEXTURE_1D, GL_TEXTURE_2D or GL_TEXTURE_3D
    unsigned internalFormat;
    // The image's texels with alpha, in texel coordinates (the padding holds none); unknown for
    // a render target or an empty texture object.
    TexelBox visible;

    // Sum of width * height * 4 bytes over the live textures (depth is not counted).
    static uint32_t usedMemory;

    // A 2-D RGBA8 texture holding `image`, padded with transparent black to powers of two;
    // linear filtering, repeat wrap, no mipmaps. A null image gives an empty texture object.
    // The texture is left bound on the active unit.
    explicit Texture(const Surface* image);
    // An empty render target of at least 8 x 8 (x 2 layers for 3-D), clamped at the edges.
    Texture(int width, int height, int depth, unsigned target, unsigned internalFormat);
    ~Texture();
    Texture(const Texture&) = delete;
    Texture& operator=(const Texture&) = delete;

    // Makes `unit` (GL_TEXTURE0 + n) active and binds this texture there.
    void bind(unsigned unit);
    // Binds texture 0 on the unit of the last bind.
    void unbind();
};

} // namespace orvel
