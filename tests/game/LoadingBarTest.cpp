// The loading bar: its length for the files done, what it draws and shows, how often, and the GL
// state it leaves behind.

#include "game/LoadingBar.h"

#include <SDL/SDL.h>
#include <gtest/gtest.h>

#include "engine/GL.h"
#include "tests/support/GLFixture.h"

using testing_support::rgba;

namespace {

class LoadingBarTest : public testing_support::GLTest {
protected:
    // The bar's clock: only the test moves it, so no span depends on how busy the machine is.
    static uint32_t now;
    static uint32_t steppedClock() { return now; }

    void SetUp() override {
        openWindow(1280, 720);
        now = 5000;
        LoadingBar::clock = steppedClock;
        LoadingBar::reset();
    }
    void TearDown() override {
        LoadingBar::clock = SDL_GetTicks;
        LoadingBar::reset();
        GLTest::TearDown();
    }

    // What the last swap showed: Mesa's software swap copies the back buffer out and keeps it.
    static Pixels shown() { return readScreen(); }

    // The bar's rows run from 720 - 48 - 3 = 669 to 671.
    static const int BAR_Y = 670;
};

uint32_t LoadingBarTest::now = 0;

TEST_F(LoadingBarTest, TheFilledWidthIsTheShareOfFilesDoneOfTheBarsLength) {
    // 1280 pixels less 160 at each side: a bar 960 long.
    EXPECT_EQ(LoadingBar::filledWidth(0, 10, 1280), 0);
    EXPECT_EQ(LoadingBar::filledWidth(5, 10, 1280), 480);
    EXPECT_EQ(LoadingBar::filledWidth(1, 3, 1280), 320);
    EXPECT_EQ(LoadingBar::filledWidth(10, 10, 1280), 960);
}

TEST_F(LoadingBarTest, MoreFilesThanTheTotalFillTheBarAndNoTotalLeavesItEmpty) {
    EXPECT_EQ(LoadingBar::filledWidth(12, 10, 1280), 960);
    EXPECT_EQ(LoadingBar::filledWidth(3, 0, 1280), 0);
    // A window too narrow for the gaps has no bar.
    EXPECT_EQ(LoadingBar::filledWidth(5, 10, 300), 0);
}

TEST_F(LoadingBarTest, ShowsTheFilledPartAndTheTrackOnBlack) {
    glClearColor(1, 0, 0, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    LoadingBar::show(10, 10); // full: shown whatever the time
    LoadingBar::show(1, 4);   // too soon after: the full bar stays
    EXPECT_EQ(LoadingBar::framesShown, 1u);
    now += LoadingBar::MIN_FRAME_MS;
    LoadingBar::show(1, 4);
    ASSERT_EQ(LoadingBar::framesShown, 2u);
    Pixels p = shown();
    // Filled from x = 160 to 160 + 960 / 4 = 400, the track on to x = 1120.
    EXPECT_EQ(p.at(160, BAR_Y) & 0xffffffu, rgba(120, 220, 255, 0));
    EXPECT_EQ(p.at(399, BAR_Y) & 0xffffffu, rgba(120, 220, 255, 0));
    EXPECT_EQ(p.at(400, BAR_Y) & 0xffffffu, rgba(28, 44, 64, 0));
    EXPECT_EQ(p.at(1119, BAR_Y) & 0xffffffu, rgba(28, 44, 64, 0));
    // Black around it: beside, above and below the bar, and everywhere else.
    EXPECT_EQ(p.at(1120, BAR_Y) & 0xffffffu, 0u);
    EXPECT_EQ(p.at(159, BAR_Y) & 0xffffffu, 0u);
    EXPECT_EQ(p.at(300, 668) & 0xffffffu, 0u);
    EXPECT_EQ(p.at(300, 672) & 0xffffffu, 0u);
    EXPECT_EQ(p.at(640, 360) & 0xffffffu, 0u);
}

TEST_F(LoadingBarTest, ShowsAtMostOneFrameInEachShortSpanButAlwaysTheFullBar) {
    LoadingBar::show(1, 10);
    EXPECT_EQ(LoadingBar::framesShown, 1u);
    now += 10;
    LoadingBar::show(2, 10);
    now += LoadingBar::MIN_FRAME_MS - 11;
    LoadingBar::show(3, 10);
    EXPECT_EQ(LoadingBar::framesShown, 1u);
    LoadingBar::show(10, 10);
    EXPECT_EQ(LoadingBar::framesShown, 2u);
    now += LoadingBar::MIN_FRAME_MS;
    LoadingBar::show(4, 10);
    EXPECT_EQ(LoadingBar::framesShown, 3u);
}

TEST_F(LoadingBarTest, TheFirstFrameShowsWhateverTheTime) {
    now = 0;
    LoadingBar::show(0, 1);
    EXPECT_EQ(LoadingBar::framesShown, 1u);
}

TEST_F(LoadingBarTest, AFrameIsDueExactlyMinFrameMsAfterTheLastEvenAcrossTheClocksWrap) {
    now = 0xffffffffu - 9;
    LoadingBar::show(1, 10);
    now += LoadingBar::MIN_FRAME_MS - 1;
    LoadingBar::show(2, 10);
    EXPECT_EQ(LoadingBar::framesShown, 1u);
    now += 1;
    LoadingBar::show(3, 10);
    EXPECT_EQ(LoadingBar::framesShown, 2u);
}

TEST_F(LoadingBarTest, LeavesTheGLStateAsItFoundIt) {
    glEnable(GL_BLEND);
    glEnable(GL_TEXTURE_2D);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE);
    glClearColor(0.25f, 0.5f, 0.75f, 1.0f);
    glEnableClientState(GL_TEXTURE_COORD_ARRAY);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glTranslatef(3, 0, 0);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    glTranslatef(0, 5, 0);
    LoadingBar::show(1, 2);
    ASSERT_EQ(LoadingBar::framesShown, 1u);

    EXPECT_TRUE(glIsEnabled(GL_BLEND));
    EXPECT_TRUE(glIsEnabled(GL_TEXTURE_2D));
    EXPECT_TRUE(glIsEnabled(GL_TEXTURE_COORD_ARRAY));
    GLint source = 0, destination = 0;
    glGetIntegerv(GL_BLEND_SRC, &source);
    glGetIntegerv(GL_BLEND_DST, &destination);
    EXPECT_EQ(source, GL_SRC_ALPHA);
    EXPECT_EQ(destination, GL_ONE);
    GLfloat clear[4] = {0, 0, 0, 0};
    glGetFloatv(GL_COLOR_CLEAR_VALUE, clear);
    EXPECT_EQ(clear[2], 0.75f);
    GLfloat m[16];
    glGetFloatv(GL_PROJECTION_MATRIX, m);
    EXPECT_EQ(m[12], 3.0f);
    glGetFloatv(GL_MODELVIEW_MATRIX, m);
    EXPECT_EQ(m[13], 5.0f);
    GLint mode = 0;
    glGetIntegerv(GL_MATRIX_MODE, &mode);
    EXPECT_EQ(mode, GL_MODELVIEW);
}

} // namespace
