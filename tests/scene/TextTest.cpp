#include "scene/Text.h"

#include "engine/Font.h"
#include "engine/GL.h"
#include "engine/Surface.h"
#include "scene/Scene2D.h"
#include "tests/scene/VisualsFixture.h"

using orvel::Color;
using orvel::Font;
using orvel::Surface;
using testing_support::VisualsTest;

namespace {

// A font image of w x h whose every cell of the 16 x 16 grid is one solid colour.
Surface* cellFontImage(int w, int h) {
    Surface* s = new Surface(w, h);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x)
            s->setPixel(x, y, Color::getColor(x / (w / 16) * 16 + 8, y / (h / 16) * 16 + 8, 200, 255));
    return s;
}

// The colour of character code c in cellFontImage: column c % 16, row c / 16.
uint32_t glyphColor(int c) { return Color::getColor(c % 16 * 16 + 8, c / 16 * 16 + 8, 200, 255); }

class TextTest : public VisualsTest {
protected:
    void SetUp() override {
        VisualsTest::SetUp();
        root = makeRoot();
        font = new Font(cellFontImage(256, 256)); // 16 x 16 cells: fontSize 16, square glyphs
    }
    void TearDown() override {
        delete root;
        delete font;
        VisualsTest::TearDown();
    }

    DirectScene2D* root = nullptr;
    Font* font = nullptr;
};

} // namespace

TEST(Text, FontSizeIsOneCellHeightInWholePixels) {
    Font font(new Surface(256, 200)); // 200 / 16 = 12.5, kept as 12
    Text t(&font, "x");
    EXPECT_EQ(t.fontSize, 12.0f);
}

TEST(Text, WidthIsLengthTimesImageAspectTimesFontSize) {
    Font wide(new Surface(512, 256)); // aspect 2, fontSize 16
    Text a(&wide, "abc");
    EXPECT_EQ(a.size.x, 96.0f);
    EXPECT_EQ(a.size.y, 16.0f);

    Font tall(new Surface(256, 512)); // aspect 0.5, fontSize 32
    Text b(&tall, "abcd");
    EXPECT_EQ(b.size.x, 64.0f);
    EXPECT_EQ(b.size.y, 32.0f);
}

TEST(Text, NullTextHoldsEmptyStringOfWidthZero) {
    Font font(new Surface(256, 256));
    Text t(&font, nullptr);
    EXPECT_TRUE(t.text.equals(""));
    EXPECT_EQ(t.text.length(), 0u);
    EXPECT_EQ(t.size.x, 0.0f);
    EXPECT_EQ(t.size.y, 16.0f);
}

TEST(Text, StartsWhiteAndAnchoredAtTheTopLeftCorner) {
    Font font(new Surface(256, 256));
    Text t(&font, "AB");
    EXPECT_EQ(t.font, &font);
    EXPECT_TRUE(t.text.equals("AB"));
    EXPECT_EQ(t.color.x, 1.0f);
    EXPECT_EQ(t.color.y, 1.0f);
    EXPECT_EQ(t.color.z, 1.0f);
    EXPECT_EQ(t.color.w, 1.0f);
    // TopLeft of a 32 x 16 box.
    EXPECT_EQ(t.hotSpot.x, 16.0f);
    EXPECT_EQ(t.hotSpot.y, 8.0f);
}

TEST(Text, SetTextResizesButLeavesTheHotSpot) {
    Font font(new Surface(256, 256));
    Text t(&font, "AB");
    t.setText("ABCDE");
    EXPECT_TRUE(t.text.equals("ABCDE"));
    EXPECT_EQ(t.size.x, 80.0f);
    EXPECT_EQ(t.size.y, 16.0f);
    EXPECT_EQ(t.hotSpot.x, 16.0f);
    t.setText(nullptr);
    EXPECT_TRUE(t.text.equals(""));
    EXPECT_EQ(t.size.x, 0.0f);
}

TEST(Text, SetTextUsesTheCurrentFontSize) {
    Font font(new Surface(256, 256));
    Text t(&font, "AB");
    t.fontSize = 10;
    t.setText("ABC");
    EXPECT_EQ(t.size.x, 30.0f);
    EXPECT_EQ(t.size.y, 10.0f);
}

TEST(Text, FontWithoutImageHasNoSize) {
    Font font(nullptr);
    Text t(&font, "AB");
    EXPECT_EQ(t.fontSize, 0.0f);
    EXPECT_EQ(t.size.x, 0.0f);
    EXPECT_EQ(t.size.y, 0.0f);
}

TEST_F(TextTest, DrawsGlyphCellsFromItsTopLeftCorner) {
    Text* t = new Text(font, "AB");
    drawAt(*root, *t, 20, 30);

    Pixels p = readScreen();
    EXPECT_TRUE(blockIs(p, 20, 30, 16, 16, glyphColor('A')));
    EXPECT_TRUE(blockIs(p, 36, 30, 16, 16, glyphColor('B')));
    EXPECT_EQ(rgb(p.at(19, 38)), 0u);
    EXPECT_EQ(rgb(p.at(52, 38)), 0u);
    EXPECT_EQ(rgb(p.at(30, 29)), 0u);
    EXPECT_EQ(rgb(p.at(30, 46)), 0u);
    delete t;
}

TEST_F(TextTest, CentredHotSpotCentresTheText) {
    Text* t = new Text(font, "AB");
    t->setHotSpot(Center);
    drawAt(*root, *t, 100, 100);

    // 32 x 16 centred at (100, 100): 84..115 by 92..107.
    Pixels p = readScreen();
    EXPECT_TRUE(blockIs(p, 84, 92, 16, 16, glyphColor('A')));
    EXPECT_TRUE(blockIs(p, 100, 92, 16, 16, glyphColor('B')));
    delete t;
}

TEST_F(TextTest, UsesItsOwnColourAndNotTheScenes) {
    Text* t = new Text(font, "A");
    t->position = orvel::vec3(20, 30, 0);
    t->color = orvel::vec4(1.0f, 0.5f, 0.0f, 1.0f);
    // A black blend colour would darken a sprite to nothing; text ignores it.
    t->setBlendColor(Color::getColor(0, 0, 0, 255));
    root->add(t);
    drawFrame(*root);

    // Glyph 'A' is (24, 72, 200); times (1, 0.5, 0) gives (24, 36, 0).
    EXPECT_TRUE(blockIs(readScreen(), 20, 30, 16, 16, pack(24, 36, 0)));
    delete t;
}

TEST_F(TextTest, ChangedFontSizeShowsAtTheNextDrawAroundTheOldHotSpot) {
    Text* t = new Text(font, "AB"); // hot spot (16, 8) from the 32 x 16 box
    t->position = orvel::vec3(100, 100, 0);
    t->fontSize = 32;
    root->add(t);
    drawFrame(*root);

    EXPECT_EQ(t->size.x, 64.0f);
    EXPECT_EQ(t->size.y, 32.0f);
    // Origin moved by hot spot - size / 2 = (16 - 32, 8 - 16): glyphs of 32 from (84, 92).
    // One pixel in from each glyph edge, clear of the neighbouring cells' filtering.
    Pixels p = readScreen();
    EXPECT_TRUE(blockIs(p, 85, 93, 30, 30, glyphColor('A')));
    EXPECT_TRUE(blockIs(p, 117, 93, 30, 30, glyphColor('B')));
    EXPECT_EQ(rgb(p.at(83, 108)), 0u);
    EXPECT_EQ(rgb(p.at(148, 108)), 0u);
    delete t;
}

TEST_F(TextTest, ShorterTextKeepsTheOldHotSpotAndShiftsRight) {
    Text* t = new Text(font, "AB"); // hot spot (16, 8) from the 32 x 16 box
    drawAt(*root, *t, 20, 30);
    t->setText("C");
    drawFrame(*root);

    // Box 16 x 16 now; origin moved by hot spot - size / 2 = (16 - 8, 8 - 8): from (28, 30).
    Pixels p = readScreen();
    EXPECT_TRUE(blockIs(p, 28, 30, 16, 16, glyphColor('C')));
    EXPECT_EQ(rgb(p.at(27, 38)), 0u);
    EXPECT_EQ(rgb(p.at(44, 38)), 0u);
    delete t;
}

TEST_F(TextTest, TextSetBeforeTheHotSpotIsDrawnFromThatCorner) {
    Text* t = new Text(font, "AB");
    t->setText("C");
    t->setHotSpot(TopLeft);
    drawAt(*root, *t, 20, 30);

    Pixels p = readScreen();
    EXPECT_TRUE(blockIs(p, 20, 30, 16, 16, glyphColor('C')));
    EXPECT_EQ(rgb(p.at(36, 38)), 0u);
    delete t;
}

TEST_F(TextTest, FontWithoutImageDrawsNothing) {
    Font empty(nullptr);
    Text* t = new Text(&empty, "AB");
    drawAt(*root, *t, 20, 30);
    EXPECT_TRUE(blockIs(readScreen(), 0, 0, WIDTH, HEIGHT, 0));
    delete t;
}

TEST_F(TextTest, LeavesTheColourArrayOnForTheNextLeaf) {
    pixelProjection();
    glEnableClientState(GL_COLOR_ARRAY);
    Text t(font, "A");
    SceneState state;
    state.color = Color4ub{255, 255, 255, 255};
    t.draw(state);
    EXPECT_TRUE(glIsEnabled(GL_COLOR_ARRAY));
    // Drawn at the origin of the current model-view: the top-left 16 x 16 pixels.
    EXPECT_TRUE(blockIs(readScreen(), 0, 0, 16, 16, glyphColor('A')));
}
