#include "engine/Color.h"

#include <gtest/gtest.h>

using orvel::Color;

TEST(Color, InitSetsRgbaByteLayout) {
    Color::rmask = 0;
    Color::ashift = 0;
    Color::init();
    EXPECT_EQ(Color::rmask, 0x000000FFu);
    EXPECT_EQ(Color::gmask, 0x0000FF00u);
    EXPECT_EQ(Color::bmask, 0x00FF0000u);
    EXPECT_EQ(Color::amask, 0xFF000000u);
    EXPECT_EQ(Color::rshift, 0);
    EXPECT_EQ(Color::gshift, 8);
    EXPECT_EQ(Color::bshift, 16);
    EXPECT_EQ(Color::ashift, 24);
}

TEST(Color, GetColorPacksRedIntoLowByte) {
    EXPECT_EQ(Color::getColor(0x11, 0x22, 0x33, 0x44), 0x44332211u);
}

TEST(Color, GetColorClampsChannelsTo255) {
    EXPECT_EQ(Color::getColor(300, 0, 65535, 256), 0xFFFF00FFu);
}

TEST(Color, ChannelGettersUnpack) {
    unsigned c = 0x44332211;
    EXPECT_EQ(Color::getR(c), 0x11u);
    EXPECT_EQ(Color::getG(c), 0x22u);
    EXPECT_EQ(Color::getB(c), 0x33u);
    EXPECT_EQ(Color::getA(c), 0x44u);
}

TEST(Color, SettersReplaceOneChannelClamped) {
    unsigned c = 0x44332211;
    EXPECT_EQ(Color::setR(c, 0xAA), 0x443322AAu);
    EXPECT_EQ(Color::setG(c, 0xAA), 0x4433AA11u);
    EXPECT_EQ(Color::setB(c, 0xAA), 0x44AA2211u);
    EXPECT_EQ(Color::setA(c, 999), 0xFF332211u);
}

TEST(Color, BlendDividesBy256SoWhiteWithItselfLosesOneStep) {
    EXPECT_EQ(Color::blend(0xFFFFFFFF, 0xFFFFFFFF, 128), 0xFEFEFEFEu);
}

TEST(Color, BlendWeightsFirstColourByF) {
    // red: (0 * 191 + 200 * 64) >> 8 = 50; green: (100 * 191 + 0) >> 8 = 74
    EXPECT_EQ(Color::blend(0x000000C8, 0x00000064 << 8, 64), 0x00004A32u);
}

TEST(Color, BlendClampsWeightTo255) {
    // f = 255 and g = 0: each channel = (c1 * 255) >> 8.
    EXPECT_EQ(Color::blend(0x80808080, 0x00000000, 1000), 0x7F7F7F7Fu);
}

TEST(Color, AddScalesFirstColourAndSaturates) {
    // (200 * 128) >> 8 = 100; 100 + 100 = 200; 100 + 200 = 300 -> 255
    EXPECT_EQ(Color::add(0xC8C8C8C8, 0xC8646464, 128), 0xFFC8C8C8u);
}

TEST(Color, MultiplyScalesThenMultipliesChannels) {
    // ((255 * 255) >> 8) = 254; (254 * 128) >> 8 = 127; (254 * 255) >> 8 = 253
    EXPECT_EQ(Color::multiply(0xFFFFFFFF, 0xFF808080, 255), 0xFD7F7F7Fu);
}

TEST(Color, BlendOfWhiteWithItselfAtFullWeightGivesFE) {
    EXPECT_EQ(Color::blend(0xFFFFFFFF, 0xFFFFFFFF, 255), 0xFEFEFEFEu);
}
