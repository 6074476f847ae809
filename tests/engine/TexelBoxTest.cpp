#include "engine/TexelBox.h"

#include <gtest/gtest.h>

#include "engine/Color.h"
#include "engine/Surface.h"

using orvel::Color;
using orvel::Surface;
using orvel::TexelBox;

namespace {

const uint32_t SEEN = 0x01000000;    // alpha 1 and no colour
const uint32_t UNSEEN = 0x00ffffff;  // white with alpha 0

void expectBox(const TexelBox& b, int x0, int y0, int x1, int y1) {
    EXPECT_TRUE(b.known);
    EXPECT_EQ(b.x0, x0);
    EXPECT_EQ(b.y0, y0);
    EXPECT_EQ(b.x1, x1);
    EXPECT_EQ(b.y1, y1);
}

// A w x h image of one colour.
Surface filled(int w, int h, uint32_t color) {
    Surface image(w, h);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) image.setPixel(x, y, color);
    return image;
}

} // namespace

TEST(TexelBox, HoldsExactlyTheTexelsWithAlpha) {
    Surface image(16, 8);
    image.setPixel(3, 5, SEEN);
    image.setPixel(10, 2, SEEN);
    expectBox(TexelBox::ofVisible(image), 3, 2, 10, 5);
}

TEST(TexelBox, ColourWithoutAlphaDoesNotCount) {
    Surface image = filled(16, 8, UNSEEN);
    image.setPixel(7, 4, Color::getColor(0, 0, 0, 255));
    expectBox(TexelBox::ofVisible(image), 7, 4, 7, 4);
}

TEST(TexelBox, AnImageWithoutAlphaIsEmptyButKnown) {
    Surface image(4, 4);
    const TexelBox b = TexelBox::ofVisible(image);
    EXPECT_TRUE(b.known);
    EXPECT_TRUE(b.isEmpty());
}

TEST(TexelBox, TexelsInOppositeCornersSpanTheWholeImage) {
    Surface image(9, 7);
    image.setPixel(0, 6, SEEN);
    image.setPixel(8, 0, SEEN);
    expectBox(TexelBox::ofVisible(image), 0, 0, 8, 6);
}

TEST(TexelBox, AnOpaqueImageIsWhole) {
    expectBox(TexelBox::ofVisible(filled(5, 3, Color::getColor(9, 9, 9, 255))), 0, 0, 4, 2);
}

TEST(TexelBox, OneTexelImageWithAlphaIsItsOwnBox) {
    Surface image(1, 1);
    image.setPixel(0, 0, SEEN);
    expectBox(TexelBox::ofVisible(image), 0, 0, 0, 0);
}

TEST(TexelBox, UnknownTexelsAreNotKnown) { EXPECT_FALSE(TexelBox::unknown().known); }
