// The floating text: its defaults, its rise and fade, and its end after lifeTime.

#include "game/TextIndicator.h"

#include "scene/Text.h"
#include "tests/support/GameSession.h"

using namespace testing_support;

namespace {

class TextIndicatorTest : public SessionTest {
protected:
    // A listed indicator started at START.
    TextIndicator* makeIndicator() {
        TextIndicator* t = new TextIndicator();
        t->startTime = START;
        t->position = orvel::vec2(500.0f, 400.0f);
        g_world->add(t->drawable);
        g_game->actors.push(t);
        return t;
    }
};

} // namespace

TEST_F(TextIndicatorTest, ClassConstantsAreSpeed35AndLifeTime2750) {
    EXPECT_EQ(TextIndicator::speed, 35.0f);
    EXPECT_EQ(TextIndicator::lifeTime, 2750u);
}

TEST_F(TextIndicatorTest, NewIndicatorIsAWhiteCentredMediumTextOfSize16) {
    TextIndicator t;
    EXPECT_EQ(t.drawable, t.text);
    EXPECT_EQ(t.text->font, Resources::font_medium);
    EXPECT_EQ(t.text->text.len, 0u);
    EXPECT_EQ(t.text->fontSize, 16.0f);
    EXPECT_EQ(t.text->color.x, 1.0f);
    EXPECT_EQ(t.text->color.w, 1.0f);
    EXPECT_EQ(t.text->hotSpot.x, 0.0f);
    EXPECT_EQ(t.text->hotSpot.y, 0.0f);
    EXPECT_EQ(t.position.x, 0.0f);
    EXPECT_EQ(t.radius, 0.0f);
    EXPECT_EQ(t.rotation, 0.0f);
    EXPECT_EQ(t.scale, 1.0f);
}

TEST_F(TextIndicatorTest, RisesBySpeedTimesFrameAndFadesWithItsAge) {
    TextIndicator* t = makeIndicator();
    setTime(START + 1100);
    t->update();
    // 35 units per second over one 60th of a second; 1100 of 2750 ms gone.
    EXPECT_FLOAT_EQ(t->position.y, 400.0f - 35.0f / 60.0f);
    EXPECT_FLOAT_EQ(t->text->color.w, 1.0f - 1100.0f / 2750.0f);
    EXPECT_FLOAT_EQ(t->text->position.y, t->position.y);
}

TEST_F(TextIndicatorTest, WrittenSpeedAppliesToEveryIndicator) {
    TextIndicator* t = makeIndicator();
    TextIndicator::speed = 70.0f;
    setTime(START + 16);
    t->update();
    TextIndicator::speed = 35.0f;
    EXPECT_FLOAT_EQ(t->position.y, 400.0f - 70.0f / 60.0f);
}

TEST_F(TextIndicatorTest, LivesThroughItsLastMillisecondAndGoesAfter) {
    TextIndicator* t = makeIndicator();
    setTime(START + 2750);
    t->update();
    ASSERT_EQ(g_game->actors.count, 1u);
    EXPECT_EQ(g_game->actors.data[0], t);
    // The actor loop deletes it on the first frame past its life.
    step(START + 2751);
    EXPECT_EQ(g_game->actors.count, 0u);
}

TEST_F(TextIndicatorTest, ShorterWrittenLifeTimeEndsItSooner) {
    makeIndicator();
    TextIndicator::lifeTime = 1000;
    step(START + 1001);
    TextIndicator::lifeTime = 2750;
    EXPECT_EQ(g_game->actors.count, 0u);
}
