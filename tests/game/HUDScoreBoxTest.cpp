// The score box: its frame and counter, and a destructor that takes the counter off the actors.

#include "game/HUDScoreBox.h"

#include "engine/Texture.h"
#include "game/Actor.h"
#include "game/Game.h"
#include "game/ScoreCounter.h"
#include "scene/Sprite.h"
#include "scene/Text.h"
#include "tests/support/GameSession.h"

using testing_support::HudScene;

namespace {

class HUDScoreBoxTest : public HudScene {};

} // namespace

TEST_F(HUDScoreBoxTest, HoldsTheScoreFrameAtHalfScaleAndAFreshCounter) {
    HUD_ScoreBox box;
    ASSERT_NE(box.frame, nullptr);
    ASSERT_NE(box.counter, nullptr);
    EXPECT_EQ(box.frame->texture, Resources::hud_score_tex);
    // The image's own 400 x 120, shown at half size.
    EXPECT_EQ(box.frame->size.x, 400.0f);
    EXPECT_EQ(box.frame->size.y, 120.0f);
    EXPECT_EQ(box.frame->scale, 0.5f);
    EXPECT_EQ(box.first, box.frame);
    EXPECT_EQ(box.count, 1);
    EXPECT_EQ(box.counter->value, 0);
}

TEST_F(HUDScoreBoxTest, DeletingTheBoxTakesItsCounterOffTheActorsBySwapWithLast) {
    // The tear-down deletes the game with a and b.
    g_game = new Game();
    Actor* a = new Actor();
    Actor* b = new Actor();
    HUD_ScoreBox* box = new HUD_ScoreBox();
    g_game->actors.clear();
    g_game->actors.push(box->counter);
    g_game->actors.push(a);
    g_game->actors.push(b);
    delete box;
    ASSERT_EQ(g_game->actors.count, 2u);
    EXPECT_EQ(g_game->actors.data[0], b);
    EXPECT_EQ(g_game->actors.data[1], a);
}

TEST_F(HUDScoreBoxTest, DeletingTheBoxWithoutAGameOnlyFreesIt) {
    HUD_ScoreBox* box = new HUD_ScoreBox();
    g_hud->add(box);
    g_hud->add(box->counter->text);
    delete box;
    EXPECT_EQ(g_hud->count, 0);
}
