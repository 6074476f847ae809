#include "engine/GfxUtil.h"

#include <cmath>

#include <gtest/gtest.h>

#include "engine/Surface.h"

using orvel::GfxUtil;
using orvel::Surface;

namespace {

// The rim-to-centre ease written out: (sin(pi * t + 3 pi / 2) + 1) / 2, in double.
int easedChannel(float t, float outer, float inner) {
    double s = (std::sin(M_PI * t + 3 * M_PI / 2) + 1) * 0.5;
    return (int)(float)((inner - outer) * (float)s + outer);
}

} // namespace

TEST(GfxUtil, GradientCircleIsOpaqueInnerColourAtCentreAndOuterAtRim) {
    Surface s(128, 128);
    GfxUtil::drawGradientCircle(&s, 64, 64, 60, 0x000000, 0xffffff);
    EXPECT_EQ(s.getPixel(64, 64), 0xFFFFFFFFu);  // d = 0, t = 1
    EXPECT_EQ(s.getPixel(4, 64), 0xFF000000u);   // d = 60, t = 0
    EXPECT_EQ(s.getPixel(64, 4), 0xFF000000u);
}

TEST(GfxUtil, GradientCircleEasesBetweenRimAndCentre) {
    Surface s(128, 128);
    GfxUtil::drawGradientCircle(&s, 64, 64, 60, 0x000000, 0xffffff);
    // (94, 64): d = 30, t = 0.5; (79, 64): d = 15, t = 0.75.
    int half = easedChannel(0.5f, 0, 255);
    int quarter = easedChannel(0.75f, 0, 255);
    EXPECT_EQ(s.getPixel(94, 64), 0xFF000000u | half << 16 | half << 8 | half);
    EXPECT_EQ(s.getPixel(79, 64), 0xFF000000u | quarter << 16 | quarter << 8 | quarter);
}

TEST(GfxUtil, GradientCircleMixesEachChannelSeparately) {
    Surface s(16, 16);
    GfxUtil::drawGradientCircle(&s, 8, 8, 4, 0x0000FF, 0x00FF00);
    EXPECT_EQ(s.getPixel(8, 8), 0xFF00FF00u);
    EXPECT_EQ(s.getPixel(4, 8), 0xFF0000FFu);
}

TEST(GfxUtil, GradientCircleLeavesCornersRightColumnAndBottomRowAlone) {
    Surface s(128, 128);
    s.replaceColor(0, 0x12345678);
    GfxUtil::drawGradientCircle(&s, 64, 64, 60, 0x000000, 0xffffff);
    EXPECT_EQ(s.getPixel(4, 4), 0x12345678u);    // d = 84.9 > 60
    EXPECT_EQ(s.getPixel(124, 64), 0x12345678u); // x = cx + r is outside the square
    EXPECT_EQ(s.getPixel(64, 124), 0x12345678u);
    EXPECT_EQ(s.getPixel(3, 64), 0x12345678u);
}

TEST(GfxUtil, GradientCircleOfZeroRadiusDrawsNothing) {
    Surface s(8, 8);
    GfxUtil::drawGradientCircle(&s, 4, 4, 0, 0, 0xffffff);
    GfxUtil::drawGradientCircle(&s, 4, 4, -3, 0, 0xffffff);
    for (int i = 0; i < 64; ++i) EXPECT_EQ(s.pixels[i], 0u);
}

TEST(GfxUtil, EllipseAndBlurAreNoOps) {
    Surface s(8, 8);
    for (int i = 0; i < 64; ++i) s.pixels[i] = i;
    GfxUtil::drawGradientEllipse(&s, 4, 4, 3, 2, 0, 0xffffff);
    GfxUtil::blurSurface(&s, 2);
    GfxUtil::blurSurface(&s, 0, 0, 8, 8, 2);
    for (int i = 0; i < 64; ++i) EXPECT_EQ(s.pixels[i], (uint32_t)i);
}
