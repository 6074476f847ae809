// The radar placeholder: zero fields, no drawing, and the radar engine pointer left null.

#include "game/Radar.h"

#include "tests/support/GameSession.h"

using testing_support::HudScene;

namespace {

class RadarTest : public HudScene {};

} // namespace

TEST(Radar, StartsWithEveryFieldZero) {
    Radar r;
    EXPECT_EQ(r.range, 0);
    EXPECT_EQ(r.blipCount, 0);
    EXPECT_EQ(r.mode, 0);
}

TEST(Radar, TheRadarEngineStaysNull) {
    EXPECT_EQ(g_radarEngine, nullptr);
}

TEST_F(RadarTest, DrawsNothingInTheHud) {
    Radar* r = new Radar();
    r->size = orvel::vec3(200, 200, 0);
    r->position = orvel::vec3(640, 360, 0);
    g_hud->add(r);
    drawHud();
    Pixels p = readScreen();
    for (uint32_t c : p.data)
        ASSERT_EQ(c & 0xffffffu, 0u);
    delete r;
}
