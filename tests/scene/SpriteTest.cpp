#include "scene/Sprite.h"

#include "engine/GL.h"
#include "engine/Texture.h"
#include "scene/Scene2D.h"
#include "tests/scene/VisualsFixture.h"

using orvel::Texture;
using testing_support::VisualsTest;

namespace {

// Cell (column, row) of a 4 x 2 sheet of 16 x 16 cells: one solid colour each.
uint32_t cellColor(int column, int row) { return orvel::Color::getColor(30 + 60 * column, 50 + 150 * row, 120, 255); }

class SpriteTest : public VisualsTest {
protected:
    void SetUp() override {
        VisualsTest::SetUp();
        root = makeRoot();
        sheet = makeTexture(64, 32, [](int x, int y) { return cellColor(x / 16, y / 16); });
        white = makeTexture(8, 8, [](int, int) { return pack(255, 255, 255); });
    }
    void TearDown() override {
        delete root;
        delete sheet;
        delete white;
        VisualsTest::TearDown();
    }

    // A 16 x 16 sprite of the sheet showing `frame`, centred at (100, 100) on the root: it covers
    // the window pixels 92..107 in x and y, one texel per pixel.
    Sprite* sheetSprite(int frame) {
        Sprite* s = new Sprite(sheet, 16, 16);
        s->animated = true;
        s->framesX = 4;
        s->framesY = 2;
        s->frame = frame;
        s->position = orvel::vec3(100, 100, 0);
        root->add(s);
        return s;
    }

    // Draws the sheet sprite showing `frame` alone into a black window and reads it back.
    Pixels drawSheetFrame(int frame) {
        Sprite* s = sheetSprite(frame);
        drawFrame(*root);
        Pixels p = readScreen();
        delete s;
        return p;
    }

    DirectScene2D* root = nullptr;
    Texture* sheet = nullptr;
    Texture* white = nullptr;
};

} // namespace

TEST_F(SpriteTest, ConstructorGivesAWholeStillImageCentredOnItsPosition) {
    Sprite s(white, 30, 20);
    EXPECT_EQ(s.texture, white);
    EXPECT_EQ(s.glowTexture, nullptr);
    EXPECT_FALSE(s.animated);
    EXPECT_EQ(s.framesX, 1);
    EXPECT_EQ(s.framesY, 1);
    EXPECT_EQ(s.frame, 0);
    EXPECT_EQ(s.size.x, 30.0f);
    EXPECT_EQ(s.size.y, 20.0f);
    EXPECT_EQ(s.hotSpot.x, 0.0f);
    EXPECT_EQ(s.hotSpot.y, 0.0f);
    EXPECT_TRUE(s.isVisible());
}

TEST_F(SpriteTest, KeepsTheGlowTexture) {
    Sprite s(white, sheet, 10, 10);
    EXPECT_EQ(s.texture, white);
    EXPECT_EQ(s.glowTexture, sheet);
}

TEST_F(SpriteTest, MinusOneTakesTheImageSizeWithoutPadding) {
    Texture* t = makeTexture(100, 60, [](int, int) { return pack(255, 255, 255); });
    ASSERT_EQ(t->width, 128);
    ASSERT_EQ(t->height, 64);
    EXPECT_EQ(t->sScale, 0.78125f);
    EXPECT_EQ(t->tScale, 0.9375f);
    Sprite s(t, -1, -1);
    EXPECT_EQ(s.size.x, 100.0f);
    EXPECT_EQ(s.size.y, 60.0f);
    delete t;
}

TEST_F(SpriteTest, OnlyExactlyMinusOneMeansTheImageSize) {
    Texture* t = makeTexture(100, 60, [](int, int) { return pack(255, 255, 255); });
    Sprite a(t, -1, 30);
    EXPECT_EQ(a.size.x, 100.0f);
    EXPECT_EQ(a.size.y, 30.0f);
    Sprite b(t, -2, -1.5f);
    EXPECT_EQ(b.size.x, -2.0f);
    EXPECT_EQ(b.size.y, -1.5f);
    delete t;
}

TEST_F(SpriteTest, InitStartsOverAsAVisibleStillImage) {
    Sprite s(sheet, 16, 16);
    s.animated = true;
    s.framesX = 4;
    s.framesY = 2;
    s.frame = 5;
    s.setVisible(false);
    s.init(white, sheet, 8, 4);
    EXPECT_EQ(s.texture, white);
    EXPECT_EQ(s.glowTexture, sheet);
    EXPECT_FALSE(s.animated);
    EXPECT_EQ(s.framesX, 1);
    EXPECT_EQ(s.framesY, 1);
    EXPECT_EQ(s.frame, 0);
    EXPECT_EQ(s.size.x, 8.0f);
    EXPECT_EQ(s.size.y, 4.0f);
    EXPECT_TRUE(s.isVisible());
}

TEST_F(SpriteTest, PaddedImageDrawsOnlyItsImageArea) {
    // Texel (x, y) of the 100 x 60 image is (2x, 4y, 90); the padding is transparent black.
    Texture* t = makeTexture(100, 60, [](int x, int y) { return pack(2 * x, 4 * y, 90); });
    Sprite* s = new Sprite(t, -1, -1);
    drawAt(*root, *s, 160, 120);

    // Centred at (160, 120): window pixels 110..209 by 90..149, one texel each.
    Pixels p = readScreen();
    for (int y = 0; y < 60; ++y)
        for (int x = 0; x < 100; ++x)
            ASSERT_EQ(rgb(p.at(110 + x, 90 + y)), rgb(pack(2 * x, 4 * y, 90))) << "texel " << x << ", " << y;
    EXPECT_EQ(rgb(p.at(109, 120)), 0u);
    EXPECT_EQ(rgb(p.at(210, 120)), 0u);
    EXPECT_EQ(rgb(p.at(160, 89)), 0u);
    EXPECT_EQ(rgb(p.at(160, 150)), 0u);
    delete s;
    delete t;
}

TEST_F(SpriteTest, SheetOfFourByTwoShowsColumnOneRowOneForFrameFive) {
    EXPECT_TRUE(blockIs(drawSheetFrame(5), 92, 92, 16, 16, cellColor(1, 1)));
}

TEST_F(SpriteTest, SheetFramesRunRowMajorFromTheTopLeft) {
    const int frames[4] = {0, 3, 4, 7};
    const int columns[4] = {0, 3, 0, 3};
    const int rows[4] = {0, 0, 1, 1};
    Sprite* s = sheetSprite(0);
    for (int i = 0; i < 4; ++i) {
        s->frame = frames[i];
        drawFrame(*root);
        EXPECT_TRUE(blockIs(readScreen(), 92, 92, 16, 16, cellColor(columns[i], rows[i]))) << "frame " << frames[i];
    }
    delete s;
}

TEST_F(SpriteTest, FramePastTheSheetWrapsBackToTheTopRow) {
    // Frame 9 of 4 x 2 is column 1, row 2: below the image, which repeats from its top.
    EXPECT_TRUE(blockIs(drawSheetFrame(9), 92, 92, 16, 16, cellColor(1, 0)));
}

TEST_F(SpriteTest, SheetIsIgnoredWhenNotAnimated) {
    Sprite* s = sheetSprite(5);
    s->animated = false;
    s->setSize(64, 32);
    drawFrame(*root);
    // The whole sheet at one texel per pixel: covers 68..131 by 84..115.
    Pixels p = readScreen();
    for (int row = 0; row < 2; ++row)
        for (int column = 0; column < 4; ++column)
            EXPECT_TRUE(blockIs(p, 68 + 16 * column, 84 + 16 * row, 16, 16, cellColor(column, row)));
    delete s;
}

TEST_F(SpriteTest, NullTextureDrawsNothing) {
    Sprite* s = new Sprite(nullptr, 40, 40);
    drawAt(*root, *s, 100, 100);
    EXPECT_TRUE(blockIs(readScreen(), 0, 0, WIDTH, HEIGHT, 0));
    delete s;
}

TEST_F(SpriteTest, TexelsAreMultipliedByTheSceneColour) {
    Sprite* s = new Sprite(white, 10, 10);
    s->position = orvel::vec3(50, 50, 0);
    // Scene colour per channel: ((node + 1) * 255) >> 8 gives 255, 128 and 0.
    s->setBlendColor(pack(255, 128, 0, 255));
    root->add(s);
    drawFrame(*root);
    EXPECT_TRUE(blockIs(readScreen(), 45, 45, 10, 10, pack(255, 128, 0)));
    delete s;
}

TEST_F(SpriteTest, HotSpotShiftsTheQuadAgainstThePosition) {
    Sprite* s = new Sprite(white, 16, 16);
    s->setHotSpot(TopLeft); // (8, 8): the position is the top-left corner
    drawAt(*root, *s, 40, 60);
    Pixels p = readScreen();
    EXPECT_TRUE(blockIs(p, 40, 60, 16, 16, pack(255, 255, 255)));
    EXPECT_EQ(rgb(p.at(39, 68)), 0u);
    EXPECT_EQ(rgb(p.at(56, 68)), 0u);
    delete s;
}

TEST_F(SpriteTest, DrawsInTheCurrentModelViewWithCullingAndDepthTestOff) {
    pixelProjection();
    glTranslatef(30, 40, 0);
    glEnable(GL_DEPTH_TEST);
    glDepthFunc(GL_NEVER);
    glEnable(GL_CULL_FACE);
    glCullFace(GL_FRONT_AND_BACK);
    glEnable(GL_TEXTURE_2D);

    Sprite s(white, 10, 6);
    SceneState state;
    state.color = Color4ub{255, 255, 255, 255};
    s.draw(state);

    EXPECT_FALSE(glIsEnabled(GL_DEPTH_TEST));
    EXPECT_FALSE(glIsEnabled(GL_CULL_FACE));
    // Centred on the translated origin: 25..34 by 37..42.
    Pixels p = readScreen();
    EXPECT_TRUE(blockIs(p, 25, 37, 10, 6, pack(255, 255, 255)));
    EXPECT_EQ(rgb(p.at(24, 40)), 0u);
    EXPECT_EQ(rgb(p.at(35, 40)), 0u);
    glDepthFunc(GL_LESS);
}
