#include "scene/Fader.h"

#include "engine/GL.h"
#include "engine/Orvel.h"
#include "tests/scene/VisualsFixture.h"

using orvel::Orvel;
using orvel::vec4;
using testing_support::VisualsTest;

// The eased opacities below follow (1 - cos(pi * t)) / 2 from `from` to `to`:
//   t = 0.25 -> 0.1464466, t = 0.5 -> 0.5, t = 0.75 -> 0.8535534.
// Over a black window a colour channel c drawn at opacity o reads back as 255 * c * o.

namespace {

class FaderTest : public VisualsTest {
protected:
    void SetUp() override {
        VisualsTest::SetUp();
        Shaders::init();
        fader.color = vec4(1.0f, 0.5f, 0.25f, 1.0f);
    }

    // Draws the fader at time `now` into a black window and returns the centre pixel.
    uint32_t drawAt(uint32_t now) {
        Orvel::currentTime = now;
        glClearColor(0, 0, 0, 0);
        glClear(GL_COLOR_BUFFER_BIT);
        fader.draw();
        return readScreen().at(WIDTH / 2, HEIGHT / 2);
    }

    Fader fader;
};

} // namespace

TEST(Fader, StartsIdleAndClear) {
    Fader f;
    EXPECT_EQ(f.startTime, 0u);
    EXPECT_EQ(f.endTime, 0u);
    EXPECT_EQ(f.from, 1.0f);
    EXPECT_EQ(f.to, 0.0f);
    EXPECT_EQ(f.current, 0.0f);
    EXPECT_EQ(f.color.x, 0.0f);
    EXPECT_EQ(f.color.y, 0.0f);
    EXPECT_EQ(f.color.z, 0.0f);
    EXPECT_EQ(f.color.w, 0.0f);
}

TEST(Fader, FadeOutRunsFromClearToCoveredOverTheGivenTime) {
    Orvel::currentTime = 2000;
    Fader f;
    f.fadeOut(300);
    EXPECT_EQ(f.from, 0.0f);
    EXPECT_EQ(f.to, 1.0f);
    EXPECT_EQ(f.startTime, 2000u);
    EXPECT_EQ(f.endTime, 2300u);
}

TEST(Fader, FadeInRunsFromCoveredToClearOverTheGivenTime) {
    Orvel::currentTime = 2000;
    Fader f;
    f.fadeIn(500);
    EXPECT_EQ(f.from, 1.0f);
    EXPECT_EQ(f.to, 0.0f);
    EXPECT_EQ(f.startTime, 2000u);
    EXPECT_EQ(f.endTime, 2500u);
}

TEST(Fader, FadeOutZeroLastsOneSecond) {
    Orvel::currentTime = 5000;
    Fader f;
    f.fadeOut(0);
    EXPECT_EQ(f.endTime, 6000u);
    Orvel::currentTime = 6000;
    EXPECT_FALSE(f.done());
    Orvel::currentTime = 6001;
    EXPECT_TRUE(f.done());
}

TEST(Fader, FadeInZeroLastsOneSecond) {
    Orvel::currentTime = 100;
    Fader f;
    f.fadeIn(0);
    EXPECT_EQ(f.endTime, 1100u);
}

TEST(Fader, DoneOnlyOnceTimeIsPastTheEnd) {
    Orvel::currentTime = 1000;
    Fader f;
    f.fadeIn(200);
    Orvel::currentTime = 1100;
    EXPECT_FALSE(f.done());
    Orvel::currentTime = 1200;
    EXPECT_FALSE(f.done());
    Orvel::currentTime = 1201;
    EXPECT_TRUE(f.done());
}

TEST_F(FaderTest, NewFaderDrawsNothing) {
    EXPECT_EQ(rgb(drawAt(0)), 0u);
    EXPECT_EQ(rgb(drawAt(16)), 0u);
    EXPECT_EQ(rgb(drawAt(70000)), 0u);
}

TEST_F(FaderTest, FadeOutHalfwayCoversHalf) {
    Orvel::currentTime = 2000;
    fader.fadeOut(1000);
    uint32_t pixel = drawAt(2500);
    EXPECT_NEAR(fader.current, 0.5f, 1e-5f);
    // 255 * (1, 0.5, 0.25) * 0.5.
    EXPECT_TRUE(nearRgb(pixel, 128, 64, 32, 1));
}

TEST_F(FaderTest, FadeOutEasesInSlowly) {
    Orvel::currentTime = 2000;
    fader.fadeOut(1000);
    uint32_t pixel = drawAt(2250);
    EXPECT_NEAR(fader.current, 0.1464466f, 1e-5f);
    // 255 * (1, 0.5, 0.25) * 0.1464466 = (37.3, 18.7, 9.3).
    EXPECT_TRUE(nearRgb(pixel, 37, 19, 9, 1));
}

TEST_F(FaderTest, FadeInFollowsTheCurveDown) {
    Orvel::currentTime = 2000;
    fader.fadeIn(1000);
    uint32_t pixel = drawAt(2250);
    EXPECT_NEAR(fader.current, 0.8535534f, 1e-5f);
    // 255 * (1, 0.5, 0.25) * 0.8535534 = (217.7, 108.8, 54.4).
    EXPECT_TRUE(nearRgb(pixel, 218, 109, 54, 1));
}

TEST_F(FaderTest, FadeInStartsFullyCovered) {
    Orvel::currentTime = 2000;
    fader.fadeIn(400);
    EXPECT_TRUE(nearRgb(drawAt(2000), 255, 128, 64, 1));
    EXPECT_EQ(fader.current, 1.0f);
}

TEST_F(FaderTest, FadeOutStartsClearAndDrawsNothing) {
    Orvel::currentTime = 2000;
    fader.fadeOut(400);
    EXPECT_EQ(rgb(drawAt(2000)), 0u);
    EXPECT_EQ(fader.current, 0.0f);
}

TEST_F(FaderTest, FinishedFadeOutKeepsCoveringEveryFrame) {
    Orvel::currentTime = 2000;
    fader.fadeOut(1000);
    // Exactly at the end the curve gives 1; past it, each frame draws the full cover again.
    EXPECT_TRUE(nearRgb(drawAt(3000), 255, 128, 64, 1));
    EXPECT_TRUE(nearRgb(drawAt(3001), 255, 128, 64, 1));
    EXPECT_TRUE(nearRgb(drawAt(3017), 255, 128, 64, 1));
    EXPECT_TRUE(nearRgb(drawAt(90000), 255, 128, 64, 1));
    EXPECT_EQ(fader.current, 1.0f);
}

TEST_F(FaderTest, FinishedFadeInDrawsNothing) {
    Orvel::currentTime = 2000;
    fader.fadeIn(500);
    drawAt(2250);
    ASSERT_GT(fader.current, 0.0f);
    EXPECT_EQ(rgb(drawAt(2501)), 0u);
    EXPECT_EQ(fader.current, 0.0f);
    EXPECT_EQ(rgb(drawAt(2600)), 0u);
}

TEST_F(FaderTest, FourthColourValueIsNotUsed) {
    fader.color = vec4(0.0f, 1.0f, 0.0f, 0.0f);
    Orvel::currentTime = 2000;
    fader.fadeOut(100);
    EXPECT_TRUE(nearRgb(drawAt(2200), 0, 255, 0, 0));
}

TEST_F(FaderTest, CoversTheWholeWindowWhateverMatricesWereLoaded) {
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glOrtho(0, 10, 0, 10, -1, 1);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    glTranslatef(50, 50, 0);

    fader.color = vec4(1, 1, 1, 1);
    Orvel::currentTime = 2000;
    fader.fadeOut(100);
    Orvel::currentTime = 2200;
    glClear(GL_COLOR_BUFFER_BIT);
    fader.draw();
    Pixels p = readScreen();
    EXPECT_TRUE(blockIs(p, 0, 0, WIDTH, HEIGHT, pack(255, 255, 255)));
}

TEST_F(FaderTest, NewFadeRestartsFromItsOwnStartOpacity) {
    Orvel::currentTime = 2000;
    fader.fadeOut(1000);
    drawAt(2500);
    ASSERT_NEAR(fader.current, 0.5f, 1e-5f);

    // Half covered, a fade-in starts fully covered rather than from 0.5.
    fader.fadeIn(1000);
    EXPECT_TRUE(nearRgb(drawAt(2500), 255, 128, 64, 1));
    EXPECT_EQ(fader.current, 1.0f);
}

TEST_F(FaderTest, TwoDrawsInOneFrameGiveTheSameOpacity) {
    Orvel::currentTime = 2000;
    fader.fadeOut(1000);
    Orvel::currentTime = 2750;
    fader.draw();
    float first = fader.current;
    fader.draw();
    EXPECT_EQ(fader.current, first);
    EXPECT_NEAR(first, 0.8535534f, 1e-5f);
}

TEST_F(FaderTest, DrawsTheSameWithoutTheShaderSet) {
    // Without the shader set the fixed pipeline draws the same colour.
    orvel::ShaderProgram* shader = Shaders::color_shader_fixed;
    Shaders::color_shader_fixed = nullptr;
    fader.color = vec4(0.0f, 0.0f, 1.0f, 1.0f);
    Orvel::currentTime = 2000;
    fader.fadeOut(100);
    glDisable(GL_TEXTURE_2D);
    EXPECT_TRUE(nearRgb(drawAt(2200), 0, 0, 255, 0));
    // Put back, so the program stays held and the set whole for the tests after.
    Shaders::color_shader_fixed = shader;
}
