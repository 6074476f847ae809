// The weapon box: its frame, three counters off every list, and its destructor.

#include "game/HUDWeaponBox.h"

#include "game/Actor.h"
#include "game/Game.h"
#include "game/ScoreCounter.h"
#include "scene/Sprite.h"
#include "scene/Text.h"
#include "tests/support/GameSession.h"

using testing_support::HudScene;

namespace {

class HUDWeaponBoxTest : public HudScene {};

} // namespace

TEST_F(HUDWeaponBoxTest, HoldsTheDialsFrameAtHalfScaleAndThreeCounters) {
    HUD_WeaponBox box;
    ASSERT_NE(box.frame, nullptr);
    EXPECT_EQ(box.frame->texture, Resources::hud_power_dials_tex);
    EXPECT_EQ(box.frame->size.x, 400.0f);
    EXPECT_EQ(box.frame->size.y, 200.0f);
    EXPECT_EQ(box.frame->scale, 0.5f);
    EXPECT_EQ(box.first, box.frame);
    EXPECT_EQ(box.count, 1);
    ASSERT_NE(box.counter1, nullptr);
    ASSERT_NE(box.counter2, nullptr);
    ASSERT_NE(box.counter3, nullptr);
    EXPECT_NE(box.counter1, box.counter2);
    EXPECT_NE(box.counter2, box.counter3);
    EXPECT_STREQ(box.counter3->text->text.getCString(), "0");
}

TEST_F(HUDWeaponBoxTest, DeletingTheBoxTakesEachCounterOffTheActorsInTurn) {
    // The tear-down deletes the game with x.
    g_game = new Game();
    Actor* x = new Actor();
    HUD_WeaponBox* box = new HUD_WeaponBox();
    g_game->actors.clear();
    g_game->actors.push(box->counter1);
    g_game->actors.push(x);
    g_game->actors.push(box->counter3);
    g_game->actors.push(box->counter2);
    // counter1 out: [counter2, x, counter3]; counter2 out: [counter3, x]; counter3 out: [x].
    delete box;
    ASSERT_EQ(g_game->actors.count, 1u);
    EXPECT_EQ(g_game->actors.data[0], x);
}
