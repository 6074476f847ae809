// The rolling counter: its start, the ease-out roll, stretches by the shared step table, the
// settled text and the actor housekeeping. Times are set on Orvel::currentTime directly.

#include "game/ScoreCounter.h"

#include <string>

#include "engine/Orvel.h"
#include "game/Resources.h"
#include "scene/Text.h"
#include "tests/support/AllocationCounter.h"
#include "tests/support/GameSession.h"

using orvel::Orvel;
using testing_support::HudScene;

namespace {

class ScoreCounterTest : public HudScene {
protected:
    static constexpr uint32_t T = 100000;

    // The counter's text after an update at `ms`.
    static std::string shownAt(ScoreCounter& c, uint32_t ms) {
        Orvel::currentTime = ms;
        c.update();
        return c.text->text.getCString();
    }
    static void addAt(ScoreCounter& c, uint32_t ms, int v) {
        Orvel::currentTime = ms;
        c.addValue(v);
    }
};

} // namespace

TEST_F(ScoreCounterTest, StartsAtZeroShowingZeroInTheBigFontAtSize15) {
    ScoreCounter c;
    EXPECT_EQ(c.value, 0);
    EXPECT_EQ(c.shownFrom, 0);
    EXPECT_EQ(c.rollStart, 0u);
    EXPECT_EQ(c.rollEnd, 0u);
    EXPECT_EQ(c.prefix.length(), 0u);
    ASSERT_NE(c.text, nullptr);
    EXPECT_EQ(c.drawable, c.text);
    EXPECT_EQ(c.text->font, Resources::font_big);
    EXPECT_EQ(c.text->fontSize, 15.0f);
    EXPECT_STREQ(c.text->text.getCString(), "0");
    EXPECT_EQ(c.scale, 1.0f);
    EXPECT_EQ(c.rotation, 0.0f);
    EXPECT_EQ(c.radius, 0.0f);
}

TEST_F(ScoreCounterTest, AddValueFromRestStartsA500msRollFromTheOldValue) {
    ScoreCounter c;
    c.value = 40;
    addAt(c, T, 100);
    EXPECT_EQ(c.value, 140);
    EXPECT_EQ(c.shownFrom, 40);
    EXPECT_EQ(c.rollStart, T);
    EXPECT_EQ(c.rollEnd, T + 500);
}

TEST_F(ScoreCounterTest, OneKillOf100ShowsTheEaseOutAtQuarterAndHalfTime) {
    ScoreCounter c;
    addAt(c, T, 100);
    // 100 * sin(pi / 8) = 38.27; 100 * sin(pi / 4) = 70.71.
    EXPECT_EQ(shownAt(c, T + 125), "38");
    EXPECT_EQ(shownAt(c, T + 250), "70");
}

TEST_F(ScoreCounterTest, AtTheRollEndItShowsTheValueAndKeepsTheRoll) {
    ScoreCounter c;
    addAt(c, T, 100);
    EXPECT_EQ(shownAt(c, T + 500), "100");
    EXPECT_EQ(c.rollStart, T);
    EXPECT_EQ(c.rollEnd, T + 500);
    EXPECT_EQ(c.shownFrom, 0);
}

TEST_F(ScoreCounterTest, AfterTheRollEndItShowsTheValueAndClearsTheRoll) {
    ScoreCounter c;
    addAt(c, T, 100);
    EXPECT_EQ(shownAt(c, T + 501), "100");
    EXPECT_EQ(c.rollStart, 0u);
    EXPECT_EQ(c.rollEnd, 0u);
    EXPECT_EQ(c.shownFrom, 100);
    EXPECT_EQ(shownAt(c, T + 5000), "100");
}

TEST_F(ScoreCounterTest, ThreeKills100msApartStretchTheRollBy450Then425) {
    ScoreCounter c;
    c.value = 20;
    addAt(c, T, 100);
    addAt(c, T + 100, 100);
    addAt(c, T + 200, 100);
    EXPECT_EQ(c.rollEnd, T + 500 + 450 + 425);
    EXPECT_EQ(c.rollStart, T);
    EXPECT_EQ(c.shownFrom, 20);
    EXPECT_EQ(c.value, 320);
    // t = 275 / 1375 = 0.2: 20 + 300 * sin(0.1 pi) = 112.7.
    EXPECT_EQ(shownAt(c, T + 275), "112");
    EXPECT_EQ(shownAt(c, T + 1375), "320");
}

TEST_F(ScoreCounterTest, AfterTwentyStretchesEveryFurtherStretchAdds5ms) {
    ScoreCounter c;
    addAt(c, T, 1);
    for (int i = 0; i < 20; ++i)
        addAt(c, T + 1, 1);
    // 450 + 425 + ... + 25 (18 steps) = 4275, then 10 and 5.
    EXPECT_EQ(c.rollEnd, T + 500 + 4290);
    addAt(c, T + 2, 1);
    EXPECT_EQ(c.rollEnd, T + 4795);
    addAt(c, T + 3, 1);
    EXPECT_EQ(c.rollEnd, T + 4800);
    EXPECT_EQ(c.value, 23);
}

TEST_F(ScoreCounterTest, TheStretchIndexIsSharedByAllCounters) {
    ScoreCounter a;
    ScoreCounter b;
    addAt(a, T, 10);     // a rolls from rest: index 0
    addAt(b, T + 1, 10); // b rolls from rest: index back to 0
    addAt(a, T + 2, 10); // a stretches by 450, index 1
    addAt(b, T + 3, 10); // b stretches by the next step, 425
    EXPECT_EQ(a.rollEnd, T + 500 + 450);
    EXPECT_EQ(b.rollEnd, T + 1 + 500 + 425);
}

TEST_F(ScoreCounterTest, ARollStartedFromRestResetsTheSharedIndex) {
    ScoreCounter a;
    ScoreCounter b;
    addAt(a, T, 10);
    addAt(a, T + 1, 10); // 450, index 1
    addAt(a, T + 2, 10); // 425, index 2
    addAt(b, T + 3, 10); // from rest: index 0
    addAt(a, T + 4, 10); // 450 again
    EXPECT_EQ(a.rollEnd, T + 500 + 450 + 425 + 450);
}

TEST_F(ScoreCounterTest, ThePrefixGoesBeforeTheNumber) {
    ScoreCounter c;
    c.prefix.set("Score: ");
    c.value = 1234;
    EXPECT_EQ(shownAt(c, T), "Score: 1234");
}

TEST_F(ScoreCounterTest, NegativeRolledValuesAreRoundedUpOnceTruncated) {
    ScoreCounter c;
    addAt(c, T, -100);
    // sinh_lerp(0.5, 0, -100) = -70.71, truncated to -70, then truncate(-70 + 0.5) = -69.
    EXPECT_EQ(shownAt(c, T + 250), "-69");
}

TEST_F(ScoreCounterTest, UpdatePinsTheTextsTopLeftToTheCounterPosition) {
    ScoreCounter c;
    c.value = 12345;
    c.position = orvel::vec2(15, 12);
    shownAt(c, T);
    EXPECT_EQ(c.text->position.x, 15.0f);
    EXPECT_EQ(c.text->position.y, 12.0f);
    EXPECT_EQ(c.text->hotSpot.x, 0.5f * c.text->size.x);
    EXPECT_EQ(c.text->hotSpot.y, 0.5f * c.text->size.y);
    EXPECT_EQ(c.text->size.y, 15.0f);
}

TEST_F(ScoreCounterTest, UpdateWrapsThePositionIntoTheWorld) {
    ScoreCounter c;
    c.position = orvel::vec2(-10, 5000);
    shownAt(c, T);
    EXPECT_FLOAT_EQ(c.position.x, 4086.0f);
    EXPECT_FLOAT_EQ(c.position.y, 904.0f);
}

TEST_F(ScoreCounterTest, SteadyRollingAllocatesNothing) {
    ScoreCounter c;
    addAt(c, T, 999999);
    // The longest text first: a text's buffer only grows.
    shownAt(c, T + 400);
    size_t before = testing_support::allocationCount();
    for (uint32_t ms = T + 3; ms < T + 600; ms += 16)
        shownAt(c, ms);
    EXPECT_EQ(testing_support::allocationCount(), before);
}
