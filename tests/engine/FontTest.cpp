#include "engine/Font.h"

#include <cstdint>
#include <vector>

#include "engine/Color.h"
#include "engine/Surface.h"
#include "engine/Texture.h"
#include "tests/support/AllocationCounter.h"
#include "tests/support/GLFixture.h"

using orvel::Color;
using orvel::Font;
using orvel::Surface;
using orvel::Texture;
using testing_support::GLTest;

namespace {

// A 256 x 256 font image whose pixel (x, y) is (x, y, 77, 255 - y): every pixel tells where
// it came from, alpha included, so a copied glyph can be checked texel by texel.
Surface* gradientFont() {
    Surface* s = new Surface(256, 256);
    for (int y = 0; y < 256; ++y)
        for (int x = 0; x < 256; ++x) s->setPixel(x, y, Color::getColor(x, y, 77, 255 - y));
    return s;
}

// Expected pixel (x, y) of a 16 x 16 glyph cell at `column`, `row` of gradientFont().
uint32_t gradientGlyph(int column, int row, int x, int y) {
    return Color::getColor(16 * column + x, 16 * row + y, 77, 255 - (16 * row + y));
}

// Checks that cell `cell` of a rendered 16-pixel-high text holds gradientFont()'s glyph at
// `column`, `row`.
void expectGradientCell(const Surface& s, int cell, int column, int row) {
    for (int y = 0; y < 16; ++y)
        for (int x = 0; x < 16; ++x)
            ASSERT_EQ(s.getPixel(16 * cell + x, y), gradientGlyph(column, row, x, y))
                << "cell " << cell << " pixel " << x << ", " << y;
}

void expectEmptyCell(const Surface& s, int cell) {
    for (int y = 0; y < 16; ++y)
        for (int x = 0; x < 16; ++x)
            ASSERT_EQ(s.getPixel(16 * cell + x, y), 0u) << "cell " << cell << " pixel " << x << ", " << y;
}

// The solid colour of cell (column, row) in cellFont(): opaque, red and green from the cell.
uint32_t cellColor(int column, int row) { return Color::getColor(column * 16 + 8, row * 16 + 8, 200, 255); }

// A font image of w x h whose every cell is filled with cellColor(column, row).
Surface* cellFont(int w, int h) {
    Surface* s = new Surface(w, h);
    int cw = w / 16;
    int ch = h / 16;
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) s->setPixel(x, y, cellColor(x / cw, y / ch));
    return s;
}

const uint32_t BACKGROUND = 0; // the fixture's clear colour

class FontTest : public GLTest {
protected:
    void SetUp() override {
        GLTest::SetUp();
        pixelProjection();
        glColor4f(1, 1, 1, 1);
    }

    // Checks that the w x h pixel block at (x, y) (from the top) is all `color`.
    static void expectBlock(const Pixels& p, int x, int y, int w, int h, uint32_t color) {
        for (int j = y; j < y + h; ++j)
            for (int i = x; i < x + w; ++i) ASSERT_EQ(p.at(i, j), color) << "pixel " << i << ", " << j;
    }
};

} // namespace

// ---- CPU rendering ----

TEST(Font, RenderOfEmptyTextOnFullSizeImageIsOneByOneCellHigh) {
    Surface* image = gradientFont();
    Surface* s = Font::render(image, "");
    ASSERT_NE(s, nullptr);
    EXPECT_EQ(s->width, 1);
    EXPECT_EQ(s->height, 16);
    EXPECT_EQ(s->getPixel(0, 0), 0u);
    delete s;
    delete image;
}

TEST(Font, RenderOfACopiesTheCellAtColumnOneRowFour) {
    Surface* image = gradientFont();
    Surface* s = Font::render(image, "A");
    ASSERT_EQ(s->width, 16);
    ASSERT_EQ(s->height, 16);
    expectGradientCell(*s, 0, 1, 4);
    delete s;
    delete image;
}

TEST(Font, RenderSizeIsTextLengthTimesCellWidthByCellHeight) {
    // 100 / 16 = 6 and 50 / 16 = 3 in integer division.
    Surface image(100, 50);
    Surface* s = Font::render(&image, "abcd");
    EXPECT_EQ(s->width, 24);
    EXPECT_EQ(s->height, 3);
    delete s;
}

TEST(Font, RenderPlacesEachCharacterInItsOwnCellLeftToRight) {
    Surface* image = gradientFont();
    // H = 72: column 8, row 4; i = 105: column 9, row 6; ! = 33: column 1, row 2.
    Surface* s = Font::render(image, "Hi!");
    ASSERT_EQ(s->width, 48);
    expectGradientCell(*s, 0, 8, 4);
    expectGradientCell(*s, 1, 9, 6);
    expectGradientCell(*s, 2, 1, 2);
    delete s;
    delete image;
}

TEST(Font, RenderOfByte233LeavesItsCellEmpty) {
    Surface* image = gradientFont();
    Surface* s = Font::render(image, "\xe9");
    ASSERT_EQ(s->width, 16);
    expectEmptyCell(*s, 0);
    delete s;
    delete image;
}

TEST(Font, HighCodeKeepsWhatTheCharacterBeforeSpilledIntoItsCell) {
    Surface* image = gradientFont();
    // A's whole-extent copy runs on into cell 1 with the glyph right of A (column 2, row 4).
    Surface* s = Font::render(image, "A\xe9");
    expectGradientCell(*s, 0, 1, 4);
    expectGradientCell(*s, 1, 2, 4);
    delete s;
    delete image;
}

TEST(Font, NextCharacterOverwritesTheSpillOfTheOneBefore) {
    Surface* image = gradientFont();
    // Z = 90: column 10, row 5, written over A's spill without blending (alpha differs).
    Surface* s = Font::render(image, "AZ");
    expectGradientCell(*s, 0, 1, 4);
    expectGradientCell(*s, 1, 10, 5);
    delete s;
    delete image;
}

TEST(Font, SpillStopsAtTheRightEdgeOfTheFontImage) {
    Surface* image = gradientFont();
    // O = 79 is in the last column (15, row 4): its copy has nothing further right to spill.
    Surface* s = Font::render(image, "O\xe9");
    expectGradientCell(*s, 0, 15, 4);
    expectEmptyCell(*s, 1);
    delete s;
    delete image;
}

TEST(Font, Byte255LeavesItsCellEmptyButSpillsGlyphZeroIntoTheNext) {
    Surface* image = gradientFont();
    // As a signed byte 255 is -1: column -1, row 0. The source starts 16 pixels left of the
    // image, so its own cell gets nothing and the next cell gets column 0, row 0.
    Surface* s = Font::render(image, "\xff\xe9");
    expectEmptyCell(*s, 0);
    expectGradientCell(*s, 1, 0, 0);
    delete s;
    delete image;
}

TEST(Font, RenderOfNullImageIsNull) {
    EXPECT_EQ(Font::render(nullptr, "A"), nullptr);
    Font font(nullptr);
    EXPECT_EQ(font.render("A"), nullptr);
}

TEST(Font, MemberRenderUsesTheFontsImage) {
    Font font(gradientFont());
    EXPECT_EQ(font.texture, nullptr);
    Surface* s = font.render("A");
    ASSERT_EQ(s->width, 16);
    expectGradientCell(*s, 0, 1, 4);
    delete s;
}

// ---- Textures ----

TEST_F(FontTest, RenderTexHoldsTheRenderedTextPaddedToPowersOfTwo) {
    Font font(gradientFont());
    // 3 cells of 16: 48 x 16, padded to 64 x 16.
    Texture* t = font.render_tex("AZ!");
    ASSERT_NE(t, nullptr);
    EXPECT_EQ(t->width, 64);
    EXPECT_EQ(t->height, 16);
    EXPECT_EQ(t->sScale, 0.75f);
    EXPECT_EQ(t->tScale, 1.0f);
    std::vector<uint32_t> texels(64 * 16);
    glBindTexture(GL_TEXTURE_2D, t->id);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glGetTexImage(GL_TEXTURE_2D, 0, GL_RGBA, GL_UNSIGNED_BYTE, texels.data());
    for (int y = 0; y < 16; ++y) {
        for (int x = 0; x < 16; ++x) {
            ASSERT_EQ(texels[y * 64 + x], gradientGlyph(1, 4, x, y));
            ASSERT_EQ(texels[y * 64 + 16 + x], gradientGlyph(10, 5, x, y));
            ASSERT_EQ(texels[y * 64 + 32 + x], gradientGlyph(1, 2, x, y));
            ASSERT_EQ(texels[y * 64 + 48 + x], 0u);
        }
    }
    delete t;
}

// ---- GL drawing ----

TEST_F(FontTest, DrawGlDrawsByte233FromCellColumn9Row14) {
    Font font(cellFont(256, 256));
    glScalef(16, 16, 1); // one glyph cell per 16 x 16 pixels
    font.draw_gl("\xe9");
    Pixels p = readScreen();
    expectBlock(p, 0, 0, 16, 16, cellColor(9, 14));
    EXPECT_EQ(p.at(16, 8), BACKGROUND);
    EXPECT_EQ(p.at(8, 16), BACKGROUND);
}

TEST_F(FontTest, DrawGlAdvancesOneGlyphWidthPerCharacter) {
    Font font(cellFont(256, 256));
    glTranslatef(40, 30, 0);
    glScalef(16, 16, 1);
    // A = 65: column 1, row 4; byte 1: column 1, row 0; Z = 90: column 10, row 5.
    font.draw_gl("A\x01Z");
    Pixels p = readScreen();
    expectBlock(p, 40, 30, 16, 16, cellColor(1, 4));
    expectBlock(p, 56, 30, 16, 16, cellColor(1, 0));
    expectBlock(p, 72, 30, 16, 16, cellColor(10, 5));
    EXPECT_EQ(p.at(39, 38), BACKGROUND);
    EXPECT_EQ(p.at(88, 38), BACKGROUND);
    EXPECT_EQ(p.at(50, 29), BACKGROUND);
    EXPECT_EQ(p.at(50, 46), BACKGROUND);
}

TEST_F(FontTest, WideImageGivesGlyphQuadsTwoWideAndOneHigh) {
    // 512 x 256: cells of 32 x 16 pixels, glyph quads 2 x 1 units.
    Font font(cellFont(512, 256));
    glScalef(16, 16, 1);
    font.draw_gl("\x05\x06");
    Pixels p = readScreen();
    expectBlock(p, 0, 0, 32, 16, cellColor(5, 0));
    expectBlock(p, 32, 0, 32, 16, cellColor(6, 0));
    EXPECT_EQ(p.at(64, 8), BACKGROUND);
    EXPECT_EQ(p.at(16, 16), BACKGROUND);
}

TEST_F(FontTest, DrawGlOfPaddedImageSamplesOnlyTheImagesPart) {
    // 160 x 80 is padded to 256 x 128: sScale = tScale = 0.625; cells are 10 x 5 pixels and
    // glyph quads 2 x 1 units, so a scale of 5 maps texels 1:1.
    Font font(cellFont(160, 80));
    glScalef(5, 5, 1);
    // 33: column 1, row 2; 255: column 15, row 15, the cell next to the padding.
    font.draw_gl("\x21\xff");
    Pixels p = readScreen();
    expectBlock(p, 0, 0, 10, 5, cellColor(1, 2));
    expectBlock(p, 10, 0, 10, 5, cellColor(15, 15));
    EXPECT_EQ(p.at(20, 2), BACKGROUND);
}

TEST_F(FontTest, DrawGlTintsWithTheCurrentColour) {
    Font font(cellFont(256, 256));
    glScalef(16, 16, 1);
    glColor4f(1, 0, 1, 1);
    font.draw_gl("A");
    Pixels p = readScreen();
    // cellColor(1, 4) is (24, 72, 200, 255); green goes to 0.
    expectBlock(p, 0, 0, 16, 16, Color::getColor(24, 0, 200, 255));
}

TEST_F(FontTest, DrawGlIgnoresAColourArrayLeftEnabled) {
    Font font(cellFont(256, 256));
    static const unsigned char black[16] = {0, 0, 0, 255, 0, 0, 0, 255, 0, 0, 0, 255, 0, 0, 0, 255};
    glEnableClientState(GL_COLOR_ARRAY);
    glColorPointer(4, GL_UNSIGNED_BYTE, 0, black);
    glScalef(16, 16, 1);
    font.draw_gl("A");
    Pixels p = readScreen();
    expectBlock(p, 0, 0, 16, 16, cellColor(1, 4));
    EXPECT_FALSE(glIsEnabled(GL_COLOR_ARRAY));
}

TEST_F(FontTest, DrawGlCreatesTheTextureOnceAndKeepsIt) {
    Font font(cellFont(256, 256));
    ASSERT_EQ(font.texture, nullptr);
    font.draw_gl("A");
    Texture* first = font.texture;
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(first->width, 256);
    EXPECT_EQ(first->height, 256);
    font.draw_gl("B");
    EXPECT_EQ(font.texture, first);
}

TEST_F(FontTest, DrawGlLeavesArraysTexturingAndTheBindingEnabled) {
    Font font(cellFont(256, 256));
    glDisable(GL_TEXTURE_2D);
    font.draw_gl("A");
    EXPECT_TRUE(glIsEnabled(GL_TEXTURE_2D));
    EXPECT_TRUE(glIsEnabled(GL_VERTEX_ARRAY));
    EXPECT_TRUE(glIsEnabled(GL_TEXTURE_COORD_ARRAY));
    GLint active = 0, bound = 0;
    glGetIntegerv(GL_ACTIVE_TEXTURE, &active);
    glGetIntegerv(GL_TEXTURE_BINDING_2D, &bound);
    EXPECT_EQ(active, GL_TEXTURE0);
    EXPECT_EQ((unsigned)bound, font.texture->id);
}

TEST_F(FontTest, DrawGlAllocatesNothingAfterTheFirstDraw) {
    Font font(cellFont(256, 256));
    font.draw_gl("warm-up");
    std::size_t before = testing_support::allocationCount();
    font.draw_gl("Score 1234567");
    EXPECT_EQ(testing_support::allocationCount(), before);
}

TEST_F(FontTest, StaticDrawGlOfNullFontDrawsNothing) {
    glScalef(16, 16, 1);
    Font::draw_gl(nullptr, "A");
    Pixels p = readScreen();
    EXPECT_EQ(p.at(8, 8), BACKGROUND);

    Font font(cellFont(256, 256));
    Font::draw_gl(&font, "A");
    EXPECT_EQ(readScreen().at(8, 8), cellColor(1, 4));
}

TEST_F(FontTest, FontWithoutImageDrawsNothing) {
    Font font(nullptr);
    glScalef(16, 16, 1);
    font.draw_gl("A");
    EXPECT_EQ(font.texture, nullptr);
    EXPECT_EQ(readScreen().at(8, 8), BACKGROUND);
}

TEST_F(FontTest, DestroyingTheFontFreesItsTexture) {
    uint32_t before = Texture::usedMemory;
    {
        Font font(cellFont(256, 256));
        font.draw_gl("A");
        EXPECT_EQ(Texture::usedMemory, before + 256 * 256 * 4);
    }
    EXPECT_EQ(Texture::usedMemory, before);
}
