// The bar placeholder: zero fields and no drawing.

#include "game/BarCounter.h"

#include "tests/support/GameSession.h"

using testing_support::HudScene;

namespace {

class BarCounterTest : public HudScene {};

} // namespace

TEST(BarCounter, StartsWithEveryFieldZero) {
    BarCounter b;
    EXPECT_EQ(b.value, 0);
    EXPECT_EQ(b.maxValue, 0);
    EXPECT_EQ(b.shownValue, 0);
    EXPECT_EQ(b.segments, 0);
    EXPECT_EQ(b.barWidth, 0);
    EXPECT_EQ(b.barHeight, 0);
    EXPECT_EQ(b.rollStart, 0);
    EXPECT_EQ(b.rollEnd, 0);
}

TEST_F(BarCounterTest, DrawsNothingInTheHud) {
    BarCounter* b = new BarCounter();
    b->size = orvel::vec3(200, 200, 0);
    b->position = orvel::vec3(640, 360, 0);
    g_hud->add(b);
    drawHud();
    Pixels p = readScreen();
    for (uint32_t c : p.data)
        ASSERT_EQ(c & 0xffffffu, 0u);
    delete b;
}
