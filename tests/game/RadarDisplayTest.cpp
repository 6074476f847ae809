// The working radar: wrapped offsets, the dial scale, blips lit where expected, clipping to the
// dial, an empty dial and steady drawing without allocation.

#include "game/RadarDisplay.h"

#include <cmath>

#include "engine/Orvel.h"
#include "game/HUDRadarBox.h"
#include "tests/support/AllocationCounter.h"
#include "tests/support/GameSession.h"

using orvel::vec2;
using testing_support::HudScene;

namespace {

// The radar box at its place in the play screen, with or without the radar inside.
class RadarDisplayTest : public HudScene {
protected:
    // The box at (1280 - 130, 720 - 130); the dial's disc (art centre 264 of 520 at half size)
    // is centred 2 pixels further right and down, radius 113.
    static constexpr float DIAL_X = 1152.0f;
    static constexpr float DIAL_Y = 592.0f;
    static constexpr float DIAL_R = 113.0f;

    void SetUp() override {
        HudScene::SetUp();
        box = addToHud<HUD_RadarBox>(1150, 590);
        radar = keep(new RadarDisplay());
        radar->followsGame = false;
        radar->centre = vec2(100, 100);
        radar->worldSize = vec2(4096, 4096);
    }

    // The screen with the box alone, then with the radar in it.
    Pixels drawWithoutRadar() {
        radar->remove();
        drawHud();
        return readScreen();
    }
    Pixels drawWithRadar() {
        box->add(radar);
        drawHud();
        return readScreen();
    }

    // The pixel at (x, y) has the colour (r, g, b), give or take one step per channel.
    static void expectColourAt(const Pixels& p, int x, int y, int r, int g, int b) {
        uint32_t c = p.at(x, y);
        EXPECT_NEAR(red(c), r, 1) << x << "," << y;
        EXPECT_NEAR(green(c), g, 1) << x << "," << y;
        EXPECT_NEAR(blue(c), b, 1) << x << "," << y;
    }

    static bool isOutsideDial(int x, int y) {
        float dx = x + 0.5f - DIAL_X, dy = y + 0.5f - DIAL_Y;
        return std::sqrt(dx * dx + dy * dy) > DIAL_R + 1.0f;
    }

    HUD_RadarBox* box = nullptr;
    RadarDisplay* radar = nullptr;
};

} // namespace

TEST(RadarDisplay, TheWrappedOffsetIsTheNearestCopy) {
    vec2 d = RadarDisplay::wrappedOffset(vec2(100, 100), vec2(4000, 100), 4096, 4096);
    EXPECT_FLOAT_EQ(d.x, -196.0f);
    EXPECT_FLOAT_EQ(d.y, 0.0f);
    d = RadarDisplay::wrappedOffset(vec2(4000, 50), vec2(10, 4090), 4096, 4096);
    EXPECT_FLOAT_EQ(d.x, 106.0f);
    EXPECT_FLOAT_EQ(d.y, -56.0f);
    d = RadarDisplay::wrappedOffset(vec2(300, 300), vec2(700, 100), 4096, 4096);
    EXPECT_FLOAT_EQ(d.x, 400.0f);
    EXPECT_FLOAT_EQ(d.y, -200.0f);
}

TEST(RadarDisplay, HalfTheWorldAwayWrapsToTheNegativeSide) {
    vec2 d = RadarDisplay::wrappedOffset(vec2(0, 0), vec2(2048, 2048), 4096, 4096);
    EXPECT_FLOAT_EQ(d.x, -2048.0f);
    EXPECT_FLOAT_EQ(d.y, -2048.0f);
}

TEST(RadarDisplay, HalfTheWorldReachesTheDialsRim) {
    RadarDisplay r;
    EXPECT_EQ(r.range, 2048.0f);
    EXPECT_EQ(r.dialRadius, 226.0f);
    vec2 p = r.dialPoint(2048, 0);
    EXPECT_FLOAT_EQ(p.x, 226.0f);
    EXPECT_FLOAT_EQ(p.y, 0.0f);
    p = r.dialPoint(1024, -512);
    EXPECT_FLOAT_EQ(p.x, 113.0f);
    EXPECT_FLOAT_EQ(p.y, -56.5f);
}

TEST(RadarDisplay, AddBlipStoresTheWrappedOffsetAndKind) {
    RadarDisplay r;
    r.centre = vec2(50, 4000);
    r.worldSize = vec2(4096, 4096);
    r.addBlip(vec2(4090, 10), RadarDisplay::BLIP_POWERUP);
    ASSERT_EQ(r.blips.count, 1u);
    EXPECT_FLOAT_EQ(r.blips.data[0].dx, -56.0f);
    EXPECT_FLOAT_EQ(r.blips.data[0].dy, 106.0f);
    EXPECT_EQ(r.blips.data[0].kind, RadarDisplay::BLIP_POWERUP);
    r.clearBlips();
    EXPECT_EQ(r.blips.count, 0u);
}

TEST(RadarDisplay, WithoutAGameGatherKeepsTheBlips) {
    g_game = nullptr;
    RadarDisplay r;
    r.addBlip(vec2(10, 10), RadarDisplay::BLIP_ENEMY);
    r.gather();
    EXPECT_EQ(r.blips.count, 1u);
}

TEST_F(RadarDisplayTest, AnEnemyEastOfTheShipLightsTheDialHalfwayToTheRim) {
    // 1024 units east: 113 art pixels, 56.5 screen pixels right of the dial's centre.
    radar->addBlip(vec2(1124, 100), RadarDisplay::BLIP_ENEMY);
    expectColourAt(drawWithRadar(), 1208, 592, 255, 70, 60);
}

TEST_F(RadarDisplayTest, EnemiesAcrossTheWorldsWrapShowAtTheirNearOffsets) {
    // 196 units west, north and north-west through the wrap: 21.6 art pixels, 10.8 on screen.
    radar->addBlip(vec2(4000, 100), RadarDisplay::BLIP_ENEMY);
    radar->addBlip(vec2(100, 4000), RadarDisplay::BLIP_ENEMY);
    radar->addBlip(vec2(4000, 4000), RadarDisplay::BLIP_ENEMY);
    Pixels p = drawWithRadar();
    for (auto xy : {std::make_pair(1141, 592), std::make_pair(1152, 581), std::make_pair(1141, 581)})
        expectColourAt(p, xy.first, xy.second, 255, 70, 60);
}

TEST_F(RadarDisplayTest, PowerupsShowInTheirOwnColour) {
    // 1024 units south: 56.5 screen pixels below the centre.
    radar->addBlip(vec2(100, 1124), RadarDisplay::BLIP_POWERUP);
    expectColourAt(drawWithRadar(), 1152, 648, 90, 255, 120);
}

TEST_F(RadarDisplayTest, NothingIsDrawnOutsideTheDial) {
    const vec2 offsets[] = {{2047, 0},     {-2048, 0},   {0, 2047},      {0, -2048},  {1500, 1500},
                            {-1600, 1400}, {2047, 2047}, {-2048, -2048}, {1900, -900}};
    for (const vec2& d : offsets)
        radar->addBlip(vec2(100 + d.x, 100 + d.y), RadarDisplay::BLIP_ENEMY);
    Pixels base = drawWithoutRadar();
    Pixels lit = drawWithRadar();
    int changedInside = 0;
    for (int y = 440; y < 720; ++y) {
        for (int x = 1000; x < 1280; ++x) {
            bool changed = base.at(x, y) != lit.at(x, y);
            if (isOutsideDial(x, y)) {
                ASSERT_FALSE(changed) << x << "," << y;
            } else if (changed) {
                ++changedInside;
            }
        }
    }
    // The blips on the rim show their inner halves.
    EXPECT_GT(changedInside, 0);
}

TEST_F(RadarDisplayTest, AnEmptyWorldDrawsOnlyTheDial) {
    Pixels base = drawWithoutRadar();
    Pixels withRadar = drawWithRadar();
    EXPECT_EQ(base.data, withRadar.data);
}

TEST_F(RadarDisplayTest, WithoutAGameAFollowingRadarShowsAnEmptyDial) {
    radar->followsGame = true;
    g_game = nullptr;
    Pixels base = drawWithoutRadar();
    Pixels withRadar = drawWithRadar();
    EXPECT_EQ(base.data, withRadar.data);
}

TEST_F(RadarDisplayTest, SteadyDrawingAllocatesNothing) {
    for (int i = 0; i < 300; ++i) {
        radar->addBlip(vec2((float)(i * 13 % 4096), (float)(i * 29 % 4096)),
                       i % 7 ? RadarDisplay::BLIP_ENEMY : RadarDisplay::BLIP_POWERUP);
    }
    box->add(radar);
    drawHud();
    drawHud();
    size_t before = testing_support::allocationCount();
    for (int i = 0; i < 5; ++i)
        drawHud();
    EXPECT_EQ(testing_support::allocationCount(), before);
}
