#pragma once
// The smallest box holding every texel of an image whose alpha is not zero: outside it, a quad of
// the image drawn with a blend weighted by source alpha leaves every pixel as it was.

namespace orvel {

class Surface;

struct TexelBox {
    // Inclusive texel columns and rows from the image's top-left; x0 > x1 when no texel has alpha.
    int x0, y0, x1, y1;
    // False for a texture whose texels are not known (a render target, a failed image): its whole
    // quad counts.
    bool known;

    bool isEmpty() const { return x0 > x1 || y0 > y1; }

    // The box of the texels of `image` with alpha.
    static TexelBox ofVisible(const Surface& image);
    // A box that stands for texels nobody looked at.
    static TexelBox unknown();
};

} // namespace orvel
