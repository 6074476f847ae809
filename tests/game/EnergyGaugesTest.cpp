// The energy and hull gauges: the fill fraction, the share of the ring lit at 0, half and full,
// the colours, the hull's over-full spawn value and steady drawing without allocation.

#include "game/EnergyGauges.h"

#include <cmath>

#include "game/HUDWeaponBox.h"
#include "tests/support/AllocationCounter.h"
#include "tests/support/GameSession.h"

using testing_support::HudScene;

namespace {

// The weapon box at its place in the play screen, with or without the gauges inside.
class EnergyGaugesTest : public HudScene {
protected:
    // The box at (100, 720 - 50) shows its 400 x 200 art at half size around that point, so the
    // rings (art centres (78, 96) and (196, 96), radii 33 to 43) are centred at (39, 668) and
    // (98, 668) with radii 16.5 to 21.5.
    static constexpr int ENERGY_X = 39;
    static constexpr int HULL_X = 98;
    static constexpr int RING_Y = 668;
    static constexpr int REACH = 24;

    void SetUp() override {
        HudScene::SetUp();
        box = addToHud<HUD_WeaponBox>(100, 670);
        gauges = keep(new EnergyGauges());
        gauges->followsGame = false;
        gauges->maxEnergy = 350;
        gauges->maxHull = 100;
        drawHud();
        base = readScreen();
        box->add(gauges);
    }

    // Pixels around a ring's centre that differ from the box drawn without gauges; the
    // bounds of those pixels relative to the centre go to minDx and maxDx.
    int changedAround(const Pixels& p, int cx, int* minDx = nullptr, int* maxDx = nullptr) const {
        int n = 0;
        int lo = REACH, hi = -REACH;
        for (int y = RING_Y - REACH; y <= RING_Y + REACH; ++y) {
            for (int x = cx - REACH; x <= cx + REACH; ++x) {
                if (p.at(x, y) != base.at(x, y)) {
                    ++n;
                    lo = std::min(lo, x - cx);
                    hi = std::max(hi, x - cx);
                }
            }
        }
        if (minDx) *minDx = lo;
        if (maxDx) *maxDx = hi;
        return n;
    }

    Pixels drawn() {
        drawHud();
        return readScreen();
    }

    HUD_WeaponBox* box = nullptr;
    EnergyGauges* gauges = nullptr;
    Pixels base;
};

} // namespace

TEST(EnergyGauges, FillFractionClampsToZeroAndOne) {
    EXPECT_EQ(EnergyGauges::fillFraction(0, 350), 0.0f);
    EXPECT_EQ(EnergyGauges::fillFraction(175, 350), 0.5f);
    EXPECT_EQ(EnergyGauges::fillFraction(350, 350), 1.0f);
    EXPECT_EQ(EnergyGauges::fillFraction(125, 100), 1.0f);
    EXPECT_EQ(EnergyGauges::fillFraction(-5, 100), 0.0f);
    EXPECT_EQ(EnergyGauges::fillFraction(5, 0), 0.0f);
}

TEST(EnergyGauges, WithoutAGameSampleKeepsTheValues) {
    g_game = nullptr;
    EnergyGauges g;
    g.energy = 12;
    g.sample();
    EXPECT_EQ(g.energy, 12.0f);
}

TEST_F(EnergyGaugesTest, EmptyGaugesLeaveTheDialsAsTheyAre) {
    gauges->energy = 0;
    gauges->hull = 0;
    Pixels p = drawn();
    EXPECT_EQ(p.data, base.data);
}

TEST_F(EnergyGaugesTest, FullEnergyLightsTheWholeFirstRingInAmber) {
    gauges->energy = 350;
    gauges->hull = 0;
    Pixels p = drawn();
    EXPECT_GT(changedAround(p, ENERGY_X), 300);
    EXPECT_EQ(changedAround(p, HULL_X), 0);
    // Mid-ring at the left (radius 19) and at the top.
    for (auto xy : {std::make_pair(ENERGY_X - 19, RING_Y), std::make_pair(ENERGY_X, RING_Y - 19)}) {
        uint32_t c = p.at(xy.first, xy.second);
        EXPECT_NEAR(red(c), 255, 2);
        EXPECT_NEAR(green(c), 200, 2);
        EXPECT_NEAR(blue(c), 60, 2);
    }
}

TEST_F(EnergyGaugesTest, HalfEnergyLightsHalfTheRingFromTheLowerLeftToTheTop) {
    gauges->energy = 350;
    int full = changedAround(drawn(), ENERGY_X);
    gauges->energy = 175;
    int minDx = 0, maxDx = 0;
    int half = changedAround(drawn(), ENERGY_X, &minDx, &maxDx);
    EXPECT_NEAR((float)half / (float)full, 0.5f, 0.05f);
    // The sweep runs from 135 to 270 degrees (y down): only the left half, up to the top.
    EXPECT_LE(maxDx, 1);
    EXPECT_LE(minDx, -20);
}

TEST_F(EnergyGaugesTest, TheHullOfAFreshSpawnShowsFullInRed) {
    gauges->hull = 100;
    int full = changedAround(drawn(), HULL_X);
    gauges->hull = 125;
    Pixels p = drawn();
    EXPECT_EQ(changedAround(p, HULL_X), full);
    EXPECT_GT(full, 300);
    EXPECT_EQ(changedAround(p, ENERGY_X), 0);
    uint32_t c = p.at(HULL_X + 19, RING_Y);
    EXPECT_NEAR(red(c), 255, 2);
    EXPECT_NEAR(green(c), 96, 2);
    EXPECT_NEAR(blue(c), 120, 2);
}

TEST_F(EnergyGaugesTest, SteadyDrawingAllocatesNothing) {
    gauges->energy = 200;
    gauges->hull = 60;
    drawHud();
    drawHud();
    size_t before = testing_support::allocationCount();
    for (int i = 0; i < 5; ++i) {
        gauges->energy -= 10;
        drawHud();
    }
    EXPECT_EQ(testing_support::allocationCount(), before);
}
