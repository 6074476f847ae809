#include "engine/Surface.h"

#include <gtest/gtest.h>

using orvel::Surface;

TEST(Surface, SizesBelowOneBecomeOne) {
    Surface s(0, -3);
    EXPECT_EQ(s.width, 1);
    EXPECT_EQ(s.height, 1);
    EXPECT_EQ(s.getPixel(0, 0), 0u);
}

TEST(Surface, NewSurfaceIsTransparentBlack) {
    Surface s(5, 4);
    for (int i = 0; i < 20; ++i) EXPECT_EQ(s.pixels[i], 0u) << i;
}

TEST(Surface, PixelsAreRowMajorTopRowFirst) {
    Surface s(5, 4);
    s.setPixel(3, 2, 0xAABBCCDD);
    EXPECT_EQ(s.pixels[2 * 5 + 3], 0xAABBCCDDu);
    EXPECT_EQ(s.getPixel(3, 2), 0xAABBCCDDu);
}

TEST(Surface, WritesOutsideAreIgnoredAndReadsOutsideGiveZero) {
    Surface s(2, 2);
    s.setPixel(-1, 0, 1);
    s.setPixel(2, 0, 1);
    s.setPixel(0, -1, 1);
    s.setPixel(0, 2, 1);
    for (int i = 0; i < 4; ++i) EXPECT_EQ(s.pixels[i], 0u);
    s.pixels[0] = 9;
    EXPECT_EQ(s.getPixel(-1, 0), 0u);
    EXPECT_EQ(s.getPixel(0, 2), 0u);
    EXPECT_EQ(s.getPixel(0, 0), 9u);
}

TEST(Surface, CopyConstructorCopiesPixelsDeeply) {
    Surface a(3, 2);
    a.setPixel(2, 1, 77);
    Surface b(a);
    EXPECT_EQ(b.width, 3);
    EXPECT_EQ(b.height, 2);
    EXPECT_NE(b.pixels, a.pixels);
    EXPECT_EQ(b.getPixel(2, 1), 77u);
}

TEST(Surface, CopyMovesBlockWithoutBlendingAlpha) {
    Surface src(4, 4), dst(4, 4);
    src.setPixel(1, 1, 0x00FFFFFF); // transparent white
    src.setPixel(2, 1, 0x80102030);
    dst.setPixel(0, 0, 0xFF0000FF);
    dst.copy(&src, 1, 1, 0, 0, 2, 1);
    EXPECT_EQ(dst.getPixel(0, 0), 0x00FFFFFFu);
    EXPECT_EQ(dst.getPixel(1, 0), 0x80102030u);
    EXPECT_EQ(dst.getPixel(2, 0), 0u);
    EXPECT_EQ(dst.getPixel(0, 1), 0u);
}

TEST(Surface, CopyWithNegativeSizeTakesSourceExtentAndClipsBothSides) {
    Surface src(3, 3), dst(4, 4);
    for (int y = 0; y < 3; ++y)
        for (int x = 0; x < 3; ++x) src.setPixel(x, y, 10 * y + x + 1);
    dst.copy(&src, 1, -1, 2, 2, -1, -1);
    // Source rows start at -1 (skipped); columns at 1, so only two columns exist in src.
    EXPECT_EQ(dst.getPixel(2, 2), 0u);
    EXPECT_EQ(dst.getPixel(2, 3), 2u);  // src (1, 0)
    EXPECT_EQ(dst.getPixel(3, 3), 3u);  // src (2, 0)
    EXPECT_EQ(dst.getPixel(1, 3), 0u);
}

TEST(Surface, CopyOfZeroWidthDoesNothing) {
    Surface src(2, 2), dst(2, 2);
    src.setPixel(0, 0, 5);
    dst.copy(&src, 0, 0, 0, 0, 0, 2);
    EXPECT_EQ(dst.getPixel(0, 0), 0u);
}

TEST(Surface, CopyFromItselfDoesNothing) {
    Surface s(3, 1);
    s.setPixel(0, 0, 5);
    s.copy(&s, 0, 0, 1, 0, -1, -1);
    EXPECT_EQ(s.getPixel(1, 0), 0u);
    EXPECT_EQ(s.getPixel(2, 0), 0u);
}

TEST(Surface, ReplaceColorSwapsEveryMatchingPixel) {
    Surface s(3, 1);
    s.setPixel(0, 0, 0xFFFF00FF);
    s.setPixel(1, 0, 0xFF00FF00);
    s.setPixel(2, 0, 0xFFFF00FF);
    s.replaceColor(0xFFFF00FF, 0);
    EXPECT_EQ(s.getPixel(0, 0), 0u);
    EXPECT_EQ(s.getPixel(1, 0), 0xFF00FF00u);
    EXPECT_EQ(s.getPixel(2, 0), 0u);
}

TEST(Surface, MakeTilableClampsBorderAndLeavesPixelsUntouched) {
    Surface s(10, 7);
    for (int i = 0; i < 70; ++i) s.pixels[i] = i * 31;
    EXPECT_EQ(s.makeTilable(100), 3); // min(10, 7) * 0.5 = 3.5 -> 3
    EXPECT_EQ(s.makeTilable(0), 1);
    EXPECT_EQ(s.makeTilable(2), 2);
    for (int i = 0; i < 70; ++i) EXPECT_EQ(s.pixels[i], (uint32_t)(i * 31)) << i;
}

TEST(Surface, UnfilledSurfaceHasTheSameSizeRules) {
    orvel::Surface s(0, -3, orvel::Surface::Unfilled());
    EXPECT_EQ(s.width, 1);
    EXPECT_EQ(s.height, 1);
    orvel::Surface t(5, 7, orvel::Surface::Unfilled());
    EXPECT_EQ(t.width, 5);
    EXPECT_EQ(t.height, 7);
    t.setPixel(4, 6, 0x12345678u);
    EXPECT_EQ(t.getPixel(4, 6), 0x12345678u);
}
