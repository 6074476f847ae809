// The starfield: scatter from g_rand, parallax, margin wrap, sky rotation, the sky camera's path
// and the stars' drawing.

#include "game/Starfield.h"

#include <cmath>

#include "engine/Matrix.h"
#include "engine/Orvel.h"
#include "engine/Random.h"
#include "engine/Surface.h"
#include "engine/Texture.h"
#include "game/Game.h"
#include "game/Main.h"
#include "game/Resources.h"
#include "scene/Fader.h"
#include "scene/Scene2D.h"
#include "tests/support/AllocationCounter.h"
#include "tests/support/GameSession.h"

using orvel::Orvel;
using orvel::Random;
using orvel::vec2;
using orvel::vec3;
using testing_support::StarfieldScene;

namespace {

const float PI_F = 3.14159265358979f;

// Logic on the 1280 x 720 screen without a window: the screen size is set directly.
class StarfieldTest : public ::testing::Test {
protected:
    // Every float draw of g_rand gives `value` from the start of its table. The int cursor is
    // moved away so that the complements randf writes land where no float is read.
    static void everyFloatDrawGives(float value) {
        for (int i = 0; i < Random::TABLE_SIZE; ++i)
            g_rand.floatTable[i] = value;
        g_rand.floatCursor = 0;
        g_rand.intCursor = 30000;
    }

    void SetUp() override {
        savedWidth = Orvel::width;
        savedHeight = Orvel::height;
        Orvel::width = 1280;
        Orvel::height = 720;
        g_rand.init(4242);
    }
    void TearDown() override {
        Orvel::width = savedWidth;
        Orvel::height = savedHeight;
    }

    // Puts star i at (x, y) with depth `depth`.
    static void place(Starfield& sf, unsigned i, float x, float y, float depth) {
        sf.stars[i].x = x;
        sf.stars[i].y = y;
        sf.stars[i].depth = depth;
    }

    int savedWidth = 0;
    int savedHeight = 0;
};

class StarfieldDrawTest : public StarfieldScene {
protected:
    // A texture of one opaque white texel per pixel, so a star shows its vertex colour.
    static orvel::Texture* whiteTexture() {
        orvel::Surface s(32, 16);
        for (int y = 0; y < 16; ++y) {
            for (int x = 0; x < 32; ++x)
                s.setPixel(x, y, 0xffffffffu);
        }
        return new orvel::Texture(&s);
    }

    // The stars of `sf` alone, drawn with a white star texture over black.
    Pixels drawStarsOnly(Starfield& sf) {
        sf.skyOn = 0;
        orvel::Texture* white = keep(whiteTexture());
        sf.starTexture = white;
        clearScreen();
        sf.draw(state);
        return readScreen();
    }

    // The packed pixel's red, green and blue, each within 1 of the expected value.
    static void expectRgbNear(uint32_t c, int r, int g, int b) {
        EXPECT_NEAR(red(c), r, 1);
        EXPECT_NEAR(green(c), g, 1);
        EXPECT_NEAR(blue(c), b, 1);
    }

    static void clearScreen() {
        glClearColor(0, 0, 0, 0);
        glClear(GL_COLOR_BUFFER_BIT);
        glEnable(GL_BLEND);
        glDisable(GL_DEPTH_TEST);
    }
};

} // namespace

TEST_F(StarfieldTest, ConstructorSetsTheDocumentedFields) {
    Starfield sf(512);
    EXPECT_EQ(sf.starCount, 512u);
    EXPECT_EQ(sf.starTexture, Resources::star_tex);
    EXPECT_EQ(sf.parallax, 0.8f);
    EXPECT_EQ(sf.minDepth, 1.0f);
    EXPECT_EQ(sf.maxDepth, 30.0f);
    EXPECT_EQ(sf.margin, 50.0f);
    EXPECT_EQ(sf.starWidth, 32.0f);
    EXPECT_EQ(sf.starHeight, 15.0f);
    EXPECT_EQ(sf.skyOn, 1);
    EXPECT_EQ(sf.starsOn, 1);
    EXPECT_EQ(sf.sky.brightness, 0.82f);
    EXPECT_EQ(sf.sky.rotX, 7.0f);
    EXPECT_EQ(sf.sky.rotY, 0.0f);
    EXPECT_EQ(sf.sky.rotZ, 56.0f);
    EXPECT_EQ(sf.sky.left, Resources::skybox_left_tex);
    EXPECT_EQ(sf.sky.right, Resources::skybox_right_tex);
    EXPECT_EQ(sf.sky.front, Resources::skybox_front_tex);
    EXPECT_EQ(sf.sky.back, Resources::skybox_back_tex);
    EXPECT_EQ(sf.sky.top, Resources::skybox_top_tex);
    EXPECT_EQ(sf.sky.bottom, Resources::skybox_bottom_tex);
    EXPECT_TRUE(sf.isVisible());
    EXPECT_TRUE(sf.flags & Drawable::EFFECT);
    EXPECT_EQ(sizeof(Starfield::Vertex), 20u);
}

TEST_F(StarfieldTest, ScatterDrawsEachStarFromTheLastDown) {
    g_rand.init(77);
    Starfield sf(6);
    Random r(77);
    for (int i = 5; i >= 0; --i) {
        int b = r.randi(168, 255);
        int g = r.randi(168, 255);
        int red = r.randi(168, 255);
        float x = r.randf(-50.0f, 1330.0f);
        float y = r.randf(-50.0f, 770.0f);
        float depth = r.randf(1.0f, 30.0f);
        float size = r.randf(0.2f, 0.7f);
        const Starfield::Star& s = sf.stars[i];
        EXPECT_EQ(s.color[0], red) << i;
        EXPECT_EQ(s.color[1], g) << i;
        EXPECT_EQ(s.color[2], b) << i;
        EXPECT_EQ(s.color[3], 255) << i;
        EXPECT_EQ(s.x, x) << i;
        EXPECT_EQ(s.y, y) << i;
        EXPECT_EQ(s.depth, depth) << i;
        EXPECT_EQ(s.size, size) << i;
        EXPECT_FLOAT_EQ(s.brightness, 1.0f - ((depth - 1.0f) / 29.0f) * size) << i;
    }
}

TEST_F(StarfieldTest, TheSpareRecordAfterTheLastStarStaysZero) {
    Starfield sf(6);
    const Starfield::Star& spare = sf.stars[6];
    EXPECT_EQ(spare.x, 0.0f);
    EXPECT_EQ(spare.y, 0.0f);
    EXPECT_EQ(spare.depth, 0.0f);
    EXPECT_EQ(spare.size, 0.0f);
    EXPECT_EQ(spare.color[3], 0);
}

TEST_F(StarfieldTest, ScatterStaysInsideTheMarginsAndRanges) {
    Starfield sf(512);
    for (unsigned i = 0; i < sf.starCount; ++i) {
        const Starfield::Star& s = sf.stars[i];
        ASSERT_GE(s.x, -50.0f);
        ASSERT_LE(s.x, 1330.0f);
        ASSERT_GE(s.y, -50.0f);
        ASSERT_LE(s.y, 770.0f);
        ASSERT_GE(s.depth, 1.0f);
        ASSERT_LE(s.depth, 30.0f);
        ASSERT_GE(s.color[0], 168);
        ASSERT_LT(s.color[0], 255);
    }
}

TEST_F(StarfieldTest, ASize07StarAtMaximumDepthHasBrightness03) {
    // Every float draw gives 1: x, y at the far margins, depth 30, size 0.7.
    everyFloatDrawGives(1.0f);
    Starfield sf(1);
    EXPECT_EQ(sf.stars[0].depth, 30.0f);
    EXPECT_FLOAT_EQ(sf.stars[0].size, 0.7f);
    EXPECT_NEAR(sf.stars[0].brightness, 0.3f, 1e-6f);
}

TEST_F(StarfieldTest, AnyStarAtMinimumDepthHasBrightness1) {
    everyFloatDrawGives(0.0f);
    Starfield sf(1);
    EXPECT_EQ(sf.stars[0].depth, 1.0f);
    EXPECT_EQ(sf.stars[0].brightness, 1.0f);
}

TEST_F(StarfieldTest, AtDepth1AStarMoves08PixelsPerWorldUnitAgainstTheCamera) {
    Starfield sf(2);
    place(sf, 0, 500, 300, 1.0f);
    vec2 delta(10, -5);
    sf.move(delta);
    EXPECT_FLOAT_EQ(sf.stars[0].x, 492.0f);
    EXPECT_FLOAT_EQ(sf.stars[0].y, 304.0f);
}

TEST_F(StarfieldTest, AtDepth30AStarMovesAbout0027PixelsPerWorldUnit) {
    Starfield sf(2);
    place(sf, 1, 500, 300, 30.0f);
    sf.move(1, 1);
    // 0.8 / 30 = 0.02667.
    EXPECT_NEAR(sf.stars[1].x, 500.0f - 0.0266667f, 1e-4f);
    EXPECT_NEAR(sf.stars[1].y, 300.0f - 0.0266667f, 1e-4f);
}

TEST_F(StarfieldTest, AStarPastTheRightMarginReappearsAtTheLeftWithItsDepthAndColour) {
    Starfield sf(1);
    place(sf, 0, 1320, 300, 1.0f);
    uint8_t r = sf.stars[0].color[0], g = sf.stars[0].color[1], b = sf.stars[0].color[2];
    // Camera 20 units left: +16 pixels, to 1336, past 1330; wrapped by the 1380 span.
    sf.move(-20, 0);
    EXPECT_FLOAT_EQ(sf.stars[0].x, -44.0f);
    EXPECT_EQ(sf.stars[0].depth, 1.0f);
    EXPECT_EQ(sf.stars[0].color[0], r);
    EXPECT_EQ(sf.stars[0].color[1], g);
    EXPECT_EQ(sf.stars[0].color[2], b);
}

TEST_F(StarfieldTest, AStarPastTheLeftMarginReappearsAtTheRight) {
    Starfield sf(1);
    place(sf, 0, -45, 300, 1.0f);
    sf.move(10, 0);
    EXPECT_FLOAT_EQ(sf.stars[0].x, 1327.0f);
}

TEST_F(StarfieldTest, AStarPastTheTopMarginReappearsAtTheBottom) {
    Starfield sf(1);
    place(sf, 0, 300, -45, 1.0f);
    sf.move(0, 10);
    // -53 wrapped by the 820 span of [-50, 770).
    EXPECT_FLOAT_EQ(sf.stars[0].y, 767.0f);
}

TEST_F(StarfieldTest, AStarPastTheBottomMarginReappearsAtTheTop) {
    Starfield sf(1);
    place(sf, 0, 300, 765, 2.0f);
    sf.move(0, -20);
    // 765 + 8 = 773.
    EXPECT_FLOAT_EQ(sf.stars[0].y, -47.0f);
}

TEST_F(StarfieldTest, ACameraJumpAcrossTheWorldWrapReachesMoveAsTheShortStep) {
    // The camera crosses x = 4096 moving right by 9: the game hands move() +9, never -4087.
    Starfield sf(1);
    place(sf, 0, 640, 360, 1.0f);
    float oldX = 4090.0f, newX = 3.0f;
    float dx = newX - oldX;
    if (dx < -1280.0f) dx += 4096.0f;
    sf.move(dx, 0);
    EXPECT_FLOAT_EQ(sf.stars[0].x, 640.0f - 7.2f);
}

TEST_F(StarfieldTest, RotateSkyAddsDegreesWrappedInto0To360) {
    Starfield sf(1);
    sf.rotateSky(355, -5, 310);
    EXPECT_FLOAT_EQ(sf.sky.rotX, 2.0f);
    EXPECT_FLOAT_EQ(sf.sky.rotY, 355.0f);
    EXPECT_FLOAT_EQ(sf.sky.rotZ, 6.0f);
}

TEST_F(StarfieldTest, InitScattersAgainFromTheCurrentRandomState) {
    Starfield sf(4);
    g_rand.init(9);
    sf.init();
    Random r(9);
    // Star 3 is scattered first.
    int b = r.randi(168, 255);
    EXPECT_EQ(sf.stars[3].color[2], b);
}

TEST_F(StarfieldDrawTest, TheSkyCameraStartsAtItsPathsOriginAtTime0) {
    Starfield sf(1);
    sf.starsOn = 0;
    Orvel::currentTime = 0;
    sf.draw(state);
    // t = 0: eye (-25, 9, 0), looking at (0, 2.5, 1).
    EXPECT_FLOAT_EQ(sf.camera.eye.x, -25.0f);
    EXPECT_FLOAT_EQ(sf.camera.eye.y, 9.0f);
    EXPECT_FLOAT_EQ(sf.camera.eye.z, 0.0f);
    EXPECT_EQ(sf.camera.fov, 50.0f);
    float len = std::sqrt(25.0f * 25.0f + 6.5f * 6.5f + 1.0f);
    EXPECT_NEAR(sf.camera.direction.x, 25.0f / len, 1e-5f);
    EXPECT_NEAR(sf.camera.direction.y, -6.5f / len, 1e-5f);
    EXPECT_NEAR(sf.camera.direction.z, 1.0f / len, 1e-5f);
}

TEST_F(StarfieldDrawTest, TheSkyCameraFollowsItsPathAQuarterCycleOn) {
    Starfield sf(1);
    sf.starsOn = 0;
    // t = 1021018 / 650000 = 1.570797.
    Orvel::currentTime = 1021018;
    sf.draw(state);
    float t = 1021018.0f / 650000.0f;
    EXPECT_NEAR(sf.camera.eye.x, -25.0f * std::cos(1.8f * t), 1e-4f);
    EXPECT_NEAR(sf.camera.eye.y, 9.0f - std::sin(1.1f * t), 1e-4f);
    EXPECT_NEAR(sf.camera.eye.z, 25.0f * std::sin(1.4f * t), 1e-4f);
    // cos(2.8274) = -0.95106, sin(1.72788) = 0.98769, sin(2.19912) = 0.80902.
    EXPECT_NEAR(sf.camera.eye.x, 23.776f, 1e-3f);
    EXPECT_NEAR(sf.camera.eye.y, 8.0123f, 1e-3f);
    EXPECT_NEAR(sf.camera.eye.z, 20.2254f, 1e-3f);
}

TEST_F(StarfieldDrawTest, TheSkyCameraPathWrapsIntoMinusPiToPi) {
    Starfield sf(1);
    sf.starsOn = 0;
    // 2600000 / 650000 = 4, which wraps to 4 - 2 pi = -2.28319.
    Orvel::currentTime = 2600000;
    sf.draw(state);
    float t = 4.0f - 2.0f * PI_F;
    EXPECT_NEAR(sf.camera.eye.x, -25.0f * std::cos(1.8f * t), 1e-3f);
    EXPECT_NEAR(sf.camera.eye.y, 9.0f - std::sin(1.1f * t), 1e-3f);
    EXPECT_NEAR(sf.camera.eye.z, 25.0f * std::sin(1.4f * t), 1e-3f);
}

TEST_F(StarfieldDrawTest, StarsShowAtTheirPlacesInTheirColours) {
    Starfield sf(3);
    // Star 0: full brightness, 16 x 7.5 pixels around (100, 80).
    sf.stars[0] = Starfield::Star{100, 80, 1, {200, 180, 240, 255}, 1.0f, 0.5f};
    // Star 1: half brightness, alpha byte 127, around (600, 400).
    sf.stars[1] = Starfield::Star{600, 400, 10, {250, 170, 210, 255}, 0.5f, 0.7f};
    // Star 2: far off screen in the margin.
    sf.stars[2] = Starfield::Star{-40, -40, 5, {255, 255, 255, 255}, 1.0f, 0.2f};
    Pixels p = drawStarsOnly(sf);

    expectRgbNear(p.at(100, 80), 200, 180, 240);
    // Additive with alpha 127 / 255 over black.
    expectRgbNear(p.at(600, 400), 250 * 127 / 255, 170 * 127 / 255, 210 * 127 / 255);
    // Star 0's quad spans x 92..108 and y 76.25..83.75.
    EXPECT_EQ(p.at(90, 80) & 0xffffffu, 0u);
    EXPECT_EQ(p.at(110, 80) & 0xffffffu, 0u);
    EXPECT_EQ(p.at(100, 74) & 0xffffffu, 0u);
    EXPECT_EQ(p.at(100, 85) & 0xffffffu, 0u);
    EXPECT_NE(p.at(93, 77) & 0xffffffu, 0u);
    EXPECT_NE(p.at(107, 83) & 0xffffffu, 0u);
}

TEST_F(StarfieldDrawTest, OverlappingStarsAddUp) {
    Starfield sf(2);
    sf.stars[0] = Starfield::Star{300, 300, 1, {100, 50, 20, 255}, 1.0f, 0.5f};
    sf.stars[1] = Starfield::Star{300, 300, 1, {60, 40, 30, 255}, 1.0f, 0.5f};
    expectRgbNear(drawStarsOnly(sf).at(300, 300), 160, 90, 50);
}

TEST_F(StarfieldDrawTest, DrawingAFullFieldWithTheSkyAllocatesNothingOnceWarm) {
    Starfield sf(512);
    clearScreen();
    sf.draw(state);
    sf.draw(state);
    size_t before = testing_support::allocationCount();
    for (int i = 0; i < 5; ++i) {
        Orvel::currentTime += 16;
        sf.move(3, -2);
        sf.draw(state);
    }
    EXPECT_EQ(testing_support::allocationCount(), before);
}

TEST_F(StarfieldDrawTest, InTheWorldSceneTheStarfieldDrawsBehindWithTheSky) {
    Starfield* sf = new Starfield(512);
    g_world->add(sf);
    Orvel::currentTime = 123456;
    glClear(GL_COLOR_BUFFER_BIT);
    g_world->draw();
    Pixels p = readScreen();
    // The sky covers the screen: no pixel row is left black.
    int lit = 0;
    for (int x = 0; x < 1280; x += 64) {
        if ((p.at(x, 360) & 0xffffffu) != 0) ++lit;
    }
    EXPECT_EQ(lit, 20);
    delete sf;
}

TEST_F(StarfieldDrawTest, TheSkyAddsToWhatIsBeneathUnlessItIsFirst) {
    Starfield sf(0);
    EXPECT_FALSE(sf.skyFirst);
}

TEST_F(StarfieldDrawTest, AFirstSkyOnBlackGivesTheAddedSkysPixels) {
    Starfield sf(0);
    Orvel::currentTime = 123456;
    clearScreen();
    sf.draw(state);
    Pixels added = readScreen();
    sf.skyFirst = true;
    clearScreen();
    sf.draw(state);
    Pixels replaced = readScreen();
    int lit = 0, differing = 0;
    for (size_t i = 0; i < added.data.size(); ++i) {
        if (added.data[i] != 0) ++lit;
        if (added.data[i] != replaced.data[i]) ++differing;
    }
    // The sky covers the screen, and replacing black is adding to it, pixel for pixel.
    EXPECT_GT(lit, 1280 * 720 * 9 / 10);
    EXPECT_EQ(differing, 0);
}

TEST_F(StarfieldDrawTest, AFirstSkyCoversWhatWasDrawnBefore) {
    Starfield sf(0);
    sf.skyFirst = true;
    Orvel::currentTime = 123456;
    glClearColor(1, 1, 1, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    sf.draw(state);
    Pixels p = readScreen();
    // Added to white the sky would leave white; replacing it leaves the sky, nowhere white.
    int white = 0;
    for (uint32_t c : p.data) {
        if ((c & 0xffffffu) == 0xffffffu) ++white;
    }
    EXPECT_EQ(white, 0);
}

TEST_F(StarfieldDrawTest, TheGameDrawsTheSkyFirst) {
    g_rand.init(1234);
    g_fader = new Fader();
    g_game = new Game();
    g_game->init();
    EXPECT_TRUE(g_game->starfield->skyFirst);
    EXPECT_EQ(g_world->first, g_game->starfield);
}
