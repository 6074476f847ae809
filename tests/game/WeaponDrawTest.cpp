// Drawing of plasma shots and laser beams through the world scene, read back from the window.
// The default camera at (640, 360) with zoom 1 shows world point (x, y) at pixel (x, y).

#include "game/Laser.h"
#include "game/Plasma.h"
#include "tests/support/GameSession.h"

using namespace testing_support;
using orvel::vec2;
using orvel::vec3;

namespace {

class WeaponDrawTest : public SessionTest {
protected:
    WeaponDrawTest() { reloadResources = true; }

    void SetUp() override {
        SessionTest::SetUp();
        g_world->debugDraw = false;
    }

    static void render() {
        glClearColor(0, 0, 0, 0);
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT);
        g_world->draw();
    }

    // A plasma gun in the world at (x, y) that has fired one shot to the right, drawn `overdraw`
    // times per matrix.
    Plasma* plasmaFiredAt(float x, float y, unsigned overdraw) {
        Plasma* gun = keep(new Plasma());
        gun->ring.overdraw = overdraw;
        gun->position = vec3(x, y, 0);
        g_world->add(gun);
        gun->shoot(vec2(1, 0));
        return gun;
    }

    // A laser in the world at the screen's centre, drawn overdraw + 1 times, whose one beam aims
    // at the pointer on (1000, 360).
    Laser* laserFired(unsigned overdraw) {
        Laser* laser = keep(new Laser());
        laser->overdraw = overdraw;
        laser->position = vec3(640, 360, 0);
        g_world->add(laser);
        setInput(0, 1000, 360);
        laser->shoot(vec2(0, 0));
        laser->update();
        return laser;
    }

    // The packed pixel's red, green and blue, each within 1 of the expected value.
    static void expectRgbNear(uint32_t c, double red, double green, double blue) {
        EXPECT_NEAR(r(c), red, 1);
        EXPECT_NEAR(g(c), green, 1);
        EXPECT_NEAR(b(c), blue, 1);
    }
    // The packed pixel is saturated white.
    static void expectWhite(uint32_t c) {
        EXPECT_EQ(r(c), 255);
        EXPECT_EQ(g(c), 255);
        EXPECT_EQ(b(c), 255);
    }

    // Red, green and blue of a packed pixel.
    static int r(uint32_t c) { return (int)(c & 0xff); }
    static int g(uint32_t c) { return (int)((c >> 8) & 0xff); }
    static int b(uint32_t c) { return (int)((c >> 16) & 0xff); }
};

} // namespace

TEST_F(WeaponDrawTest, PlasmaShotSingleDrawShowsItsColour) {
    plasmaFiredAt(640, 360, 1);
    render();
    Pixels px = readScreen();
    // The bullet image is opaque white in its middle: one additive draw of (128, 113, 255).
    expectRgbNear(px.at(640, 360), 128, 113, 255);
    // The square's half side is 16: nothing 20 pixels away.
    EXPECT_EQ(px.at(661, 360) & 0xffffff, 0u);
    EXPECT_EQ(px.at(640, 381) & 0xffffff, 0u);
}

TEST_F(WeaponDrawTest, PlasmaOverdrawAddsUp) {
    plasmaFiredAt(640, 360, 3);
    render();
    // Three additive draws: 384, 339 and 765 saturate to white.
    expectWhite(readScreen().at(640, 360));
}

TEST_F(WeaponDrawTest, LaserBeamBodySingleDraw) {
    laserFired(0);
    render();
    Pixels px = readScreen();
    // Beam from (640, 360) to (1920, 360), 7 to each side; at x = 900 only the body covers the
    // pixel (the muzzle glow reaches 640 + 20 x 7 = 780). The image is white along its middle,
    // so one draw adds (76, 76, 255) x a with a = 224 / 255 into the world's target, whose alpha
    // becomes a x a. The copy to the screen blends by that alpha: (76, 76, 255) x a^3, with
    // a^3 = 0.6778, gives (51.5, 51.5, 172.8).
    expectRgbNear(px.at(900, 360), 51.5, 51.5, 172.8);
    EXPECT_EQ(px.at(900, 370) & 0xffffff, 0u);
    EXPECT_EQ(px.at(900, 350) & 0xffffff, 0u);
}

TEST_F(WeaponDrawTest, LaserBeamFiveAdditiveDraws) {
    laserFired(4);
    render();
    // overdraw + 1 = 5 draws: 334 and 1120 saturate.
    expectWhite(readScreen().at(900, 360));
}

TEST_F(WeaponDrawTest, DeadBeamDrawsNothing) {
    laserFired(4);
    setTime(START + 650);
    render();
    EXPECT_EQ(readScreen().at(900, 360) & 0xffffff, 0u);
    EXPECT_EQ(readScreen().at(640, 360) & 0xffffff, 0u);
}

TEST_F(WeaponDrawTest, PlasmaLeavesNoPhantomShotsAfterACornerFrame) {
    plasmaFiredAt(4000, 4000, 1);
    orvel::Orvel::sync = 0.0f;

    // Near the world's corner the shot at (4000, 4000) shows through the corner rectangle,
    // shifted by (-4096, -4096): at (4000 - 4096 - 100 + 640, 4000 - 4096 - 100 + 360).
    g_world->getCamera()->position = vec2(100, 100);
    render();
    EXPECT_NEAR(r(readScreen().at(444, 164)), 128, 1);

    // In the middle of the world one rectangle remains and the shot is off screen: nothing of
    // the corner frame's copies may show.
    g_world->getCamera()->position = vec2(2048, 2048);
    render();
    const Pixels px = readScreen();
    for (int y = 0; y < 720; y += 2) {
        for (int x = 0; x < 1280; x += 2) ASSERT_EQ(px.at(x, y) & 0xffffff, 0u) << x << "," << y;
    }
}
