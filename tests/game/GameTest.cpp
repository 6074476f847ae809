// The game session: construction, init, the actor loop, game over, camera, shake, starfield
// filter and killEnemiesInRadius.

#include "game/Game.h"
#include "game/GameSessions.h"

#include <cmath>

#include "engine/Math.h"
#include "engine/Random.h"
#include "game/Friend.h"
#include "game/HUDRadarBox.h"
#include "game/HUDScoreBox.h"
#include "game/HUDWeaponBox.h"
#include "game/Laser.h"
#include "game/Plasma.h"
#include "game/Player.h"
#include "game/Reticle.h"
#include "game/ScoreCounter.h"
#include "game/Starfield.h"
#include "scene/ParticleSlice.h"
#include "scene/ParticleSystem.h"
#include "scene/Text.h"
#include "tests/support/GameSession.h"

using namespace testing_support;
using orvel::vec2;

namespace {

const double PI = 3.14159265358979323846;

class GameTest : public SessionTest {
protected:
    static Fighter* fighterAt(vec2 at) {
        Fighter* f = listInWorld(new Fighter());
        f->position = at;
        return f;
    }
};

// Counts its updates; a given number of them push a new counter during the loop.
class SpawningActor : public Actor {
public:
    void update() override {
        ++updates;
        if (child == nullptr) {
            child = new SpawningActor();
            child->child = child; // the child spawns nothing
            g_game->actors.push(child);
        }
    }
    int updates = 0;
    SpawningActor* child = nullptr;
};

} // namespace

TEST_F(GameTest, ConstructorMakesTheListsParticleSystemsSliceAndGameOverText) {
    EXPECT_EQ(g_game->actors.capacity, 128u);
    EXPECT_EQ(g_game->enemies.capacity, 128u);
    EXPECT_EQ(g_game->friends.capacity, 128u);
    EXPECT_EQ(g_game->spareList.capacity, 128u);
    EXPECT_EQ(g_game->powerups.capacity, 128u);
    EXPECT_EQ(g_game->actors.count, 0u);
    EXPECT_EQ(g_game->particles->capacity, 1024u);
    EXPECT_EQ(g_game->explosionParticles->capacity, 4096u);
    EXPECT_EQ(g_game->explosionParticles->userFlag, 1u);
    EXPECT_EQ(g_game->particles->texture, Resources::proc_particle0_tex);
    EXPECT_EQ(g_game->explosionParticles->texture, Resources::proc_particle0_tex);
    ASSERT_NE(g_game->explosionSlice, nullptr);
    EXPECT_EQ(g_game->explosionSlice->system, g_game->explosionParticles);
    EXPECT_TRUE(g_game->explosionSlice->removeWhenEmpty);
    EXPECT_FALSE(g_game->explosionSlice->deleteWhenEmpty);
    ASSERT_NE(g_game->starfield, nullptr);
    EXPECT_EQ(g_game->starfield->starCount, 512u);
    EXPECT_STREQ(g_game->gameOverText->text.getCString(), "Game Over");
    EXPECT_EQ(g_game->gameOverText->font, Resources::font_big);
}

TEST_F(GameTest, ListsGrowByDoubling) {
    for (int i = 0; i < 129; ++i) g_game->spareList.push(nullptr);
    EXPECT_EQ(g_game->spareList.capacity, 256u);
}

TEST_F(GameTest, InitStartsAtWaveZeroWithThreeLivesAndTheFirstWaveFiveSecondsAway) {
    g_game->init();
    EXPECT_EQ(g_game->wave, 0);
    EXPECT_EQ(g_game->difficulty, 1.0f);
    EXPECT_EQ(g_game->lives, 3);
    EXPECT_EQ(g_game->upgradePoints, 0);
    EXPECT_TRUE(g_game->running);
    EXPECT_EQ(g_game->nextWaveTime, (float)START + 5000.0f);
    EXPECT_EQ(g_game->shakeEnd, 0.0f);
    EXPECT_EQ(g_game->gameOverEnd, 0.0f);
}

TEST_F(GameTest, InitPutsThePlayerAtTheWorldCentreOnFriendsAndActors) {
    g_game->init();
    Player* p = g_game->player;
    ASSERT_NE(p, nullptr);
    EXPECT_EQ(p->position.x, 2048.0f);
    EXPECT_EQ(p->position.y, 2048.0f);
    ASSERT_EQ(g_game->friends.count, 1u);
    EXPECT_EQ(g_game->friends.data[0], p);
    // The score counter first (the score box), then the player.
    ASSERT_EQ(g_game->actors.count, 2u);
    EXPECT_EQ(g_game->actors.data[0], g_game->scoreCounter);
    EXPECT_EQ(g_game->actors.data[1], p);
    EXPECT_EQ(p->drawable->parent, static_cast<Container*>(g_world));
    EXPECT_EQ(p->plasma->parent, static_cast<Container*>(g_world));
    EXPECT_EQ(p->laser->parent, static_cast<Container*>(g_world));
}

TEST_F(GameTest, InitDrawsTheStarfieldFirstAndTheExplosionsInTheWorld) {
    g_game->init();
    EXPECT_EQ(g_world->first, static_cast<Drawable*>(g_game->starfield));
    EXPECT_EQ(g_game->explosionSlice->parent, static_cast<Container*>(g_world));
}

TEST_F(GameTest, InitPlacesTheThreeHudBoxesTheReticleAndTheScoreCounter) {
    g_game->init();
    ASSERT_NE(g_game->scoreBox, nullptr);
    EXPECT_EQ(g_game->scoreBox->position.x, 100.0f);
    EXPECT_EQ(g_game->scoreBox->position.y, 30.0f);
    EXPECT_EQ(g_game->weaponBox->position.x, 100.0f);
    EXPECT_EQ(g_game->weaponBox->position.y, 670.0f);
    EXPECT_EQ(g_game->radarBox->position.x, 1150.0f);
    EXPECT_EQ(g_game->radarBox->position.y, 590.0f);
    EXPECT_EQ(g_game->scoreBox->parent, static_cast<Container*>(g_hud));
    EXPECT_EQ(g_game->weaponBox->parent, static_cast<Container*>(g_hud));
    EXPECT_EQ(g_game->radarBox->parent, static_cast<Container*>(g_hud));
    EXPECT_EQ(g_game->reticle->parent, static_cast<Container*>(g_hud));
    EXPECT_EQ(g_game->scoreCounter, g_game->scoreBox->counter);
    EXPECT_EQ(g_game->weaponCounter, g_game->weaponBox->counter3);
    EXPECT_EQ(g_game->scoreCounter->drawable->parent, static_cast<Container*>(g_hud));
    EXPECT_EQ(g_game->scoreCounter->position.x, 15.0f);
    EXPECT_EQ(g_game->scoreCounter->position.y, 12.0f);
    EXPECT_EQ(g_game->scoreCounter->value, 0);
    EXPECT_EQ(g_game->scoreCounter->rollEnd, 0u);
}

TEST_F(GameTest, ActorsAddedDuringTheLoopAreUpdatedInTheSameFrame) {
    SpawningActor* a = new SpawningActor();
    g_game->actors.push(a);
    g_game->update();
    ASSERT_EQ(g_game->actors.count, 2u);
    EXPECT_EQ(a->updates, 1);
    EXPECT_EQ(a->child->updates, 1);
}

TEST_F(GameTest, GameOverOnlyWhenTheHullIsGoneWithNoLivesLeft) {
    g_game->init();
    g_game->player->hull = 0.0f;
    g_game->lives = 1;
    step(START + 16);
    EXPECT_TRUE(g_game->running);
    g_game->lives = 0;
    step(START + 32);
    EXPECT_FALSE(g_game->running);
    EXPECT_EQ(g_game->gameOverStart, (float)START + 32.0f);
    EXPECT_EQ(g_game->gameOverEnd, (float)START + 1532.0f);
    EXPECT_EQ(g_game->gameOverText->parent, static_cast<Container*>(g_hud));
    EXPECT_EQ(g_game->gameOverText->position.x, 640.0f);
    EXPECT_EQ(g_game->gameOverText->position.y, 288.0f);
    EXPECT_EQ(g_game->gameOverText->color.w, 0.0f);
}

TEST_F(GameTest, GameOverTextFadesInOverOneAndAHalfSeconds) {
    g_game->init();
    g_game->player->hull = 0.0f;
    g_game->lives = 0;
    step(START);
    step(START + 750);
    // Half of an ease along half a sine wave: (1 - cos(pi / 2)) / 2.
    EXPECT_NEAR(g_game->gameOverText->color.w, (1.0 - std::cos(PI * 0.5)) / 2.0, 1e-5);
    step(START + 1499);
    EXPECT_LT(g_game->gameOverText->color.w, 1.0f);
    step(START + 1500);
    EXPECT_EQ(g_game->gameOverText->color.w, 1.0f);
    step(START + 5000);
    EXPECT_EQ(g_game->gameOverText->color.w, 1.0f);
}

TEST_F(GameTest, EnemyAcrossTheWorldEdgeIsKilledThroughTheWrap) {
    fighterAt(vec2(4090.0f, 100.0f));
    vec2 centre(10.0f, 100.0f);
    g_game->killEnemiesInRadius(centre, 50.0f);
    EXPECT_EQ(g_game->enemies.count, 0u);
    EXPECT_EQ(g_game->explosionSlice->count, 192u);
}

TEST_F(GameTest, EnemyExactlyAtTheRadiusSurvives) {
    fighterAt(vec2(1100.0f, 1000.0f));
    vec2 centre(1000.0f, 1000.0f);
    g_game->killEnemiesInRadius(centre, 100.0f);
    EXPECT_EQ(g_game->enemies.count, 1u);
}

TEST_F(GameTest, EnemySwappedIntoADestroyedSlotSurvivesUntilTheNextCall) {
    fighterAt(vec2(1000.0f, 1000.0f));
    Fighter* far = fighterAt(vec2(3000.0f, 3000.0f));
    Fighter* last = fighterAt(vec2(1010.0f, 1000.0f));
    vec2 centre(1000.0f, 1000.0f);
    g_game->killEnemiesInRadius(centre, 100.0f);
    ASSERT_EQ(g_game->enemies.count, 2u);
    EXPECT_EQ(g_game->enemies.data[0], last);
    EXPECT_EQ(g_game->enemies.data[1], far);
    g_game->killEnemiesInRadius(centre, 100.0f);
    ASSERT_EQ(g_game->enemies.count, 1u);
    EXPECT_EQ(g_game->enemies.data[0], far);
}

TEST_F(GameTest, ScreenShakeRecordsMagnitudeAndInterval) {
    g_game->screenShake(1000.0f, 50.0f);
    EXPECT_EQ(g_game->shakeMagnitude, 50.0f);
    EXPECT_EQ(g_game->shakeStart, (float)START);
    EXPECT_EQ(g_game->shakeEnd, (float)START + 1000.0f);
}

TEST_F(GameTest, CameraCentresOnTheResetShipWithFullZoom) {
    g_game->init();
    step(START + 16);
    const Camera2D* camera = g_world->getCamera();
    EXPECT_EQ(camera->position.x, 2048.0f);
    EXPECT_EQ(camera->position.y, 2048.0f);
    EXPECT_EQ(camera->zoom, 1.0f);
}

TEST_F(GameTest, CameraLeadsTheShipByAThirdOfTheLeadAndZoomsOutWithIt) {
    g_game->init();
    g_game->player->cameraLead = vec2(300.0f, -100.0f);
    step(START + 16);
    const Player* p = g_game->player;
    const Camera2D* camera = g_world->getCamera();
    EXPECT_FLOAT_EQ(camera->position.x, p->position.x + p->cameraLead.x * 0.3f);
    EXPECT_FLOAT_EQ(camera->position.y, p->position.y + p->cameraLead.y * 0.3f);
    const float lead = std::sqrt(p->cameraLead.x * p->cameraLead.x + p->cameraLead.y * p->cameraLead.y);
    EXPECT_FLOAT_EQ(camera->zoom, 1.0f - lead / p->maxLead * 0.2f);
}

TEST_F(GameTest, ShakeOffsetsTheCameraBySecondThenFirstDrawEasedOut) {
    g_game->init();
    g_game->screenShake(1000.0f, 50.0f);
    g_rand.init(99);
    orvel::Random r(99);
    const float first = r.randf(-1.0f, 1.0f);
    const float second = r.randf(-1.0f, 1.0f);
    step(START + 250);
    // Eases out along sin(t pi / 2) from 50 to 0: 50 (1 - sin(pi / 8)) at a quarter.
    const double magnitude = 50.0 * (1.0 - std::sin(0.25 * PI / 2.0));
    const Camera2D* camera = g_world->getCamera();
    EXPECT_NEAR(camera->position.x, 2048.0 + second * magnitude, 1e-3);
    EXPECT_NEAR(camera->position.y, 2048.0 + first * magnitude, 1e-3);
    step(START + 1000);
    EXPECT_EQ(camera->position.x, 2048.0f);
    EXPECT_EQ(camera->position.y, 2048.0f);
}

TEST_F(GameTest, CameraJumpAcrossTheWrapMovesTheStarsOnlyByTheTrueStep) {
    g_game->init();
    g_game->player->position = vec2(4090.0f, 2048.0f);
    step(START + 16);
    Starfield* s = g_game->starfield;
    const float x0 = s->stars[0].x;
    const float y0 = s->stars[0].y;
    const float depth = s->stars[0].depth;
    // From 4090 to 6 is 12 units to the right across the wrap, not 4084 to the left.
    g_game->player->position = vec2(6.0f, 2048.0f);
    step(START + 32);
    const float expected =
        orvel::Math::wrapf(x0 - 12.0f * 0.8f / depth, -50.0f, 1280.0f + 50.0f);
    EXPECT_NEAR(s->stars[0].x, expected, 1e-3);
    EXPECT_NEAR(s->stars[0].y, y0, 1e-4);
}

TEST_F(GameTest, EndDeletesReticleScoreCounterAndPlayer) {
    g_game->init();
    g_game->end();
    EXPECT_EQ(g_game->player, nullptr);
    EXPECT_EQ(g_game->reticle, nullptr);
    EXPECT_EQ(g_game->scoreCounter, nullptr);
}

TEST_F(GameTest, LeavingTheIntroStartsARealSessionThatRunsEachFrame) {
    // The intro hand-over builds its own session.
    GameSessions::end();
    g_apology = new Apology();
    runlevel = RUNLEVEL_TO_GAME;
    // The fade to black ended long ago.
    g_fader->startTime = g_fader->endTime = START - 1000;
    runFrameLogic();
    ASSERT_EQ(runlevel, RUNLEVEL_GAME);
    ASSERT_NE(g_game, nullptr);
    EXPECT_EQ(g_game->lives, 3);
    EXPECT_EQ(g_game->nextWaveTime, (float)(START + 5000));
    // Score, weapon and radar boxes, the reticle and the score counter's text.
    EXPECT_EQ(g_hud->count, 5);
    setTime(START + 5001);
    runFrameLogic();
    EXPECT_EQ(g_game->wave, 1);
    EXPECT_EQ(g_game->enemies.count, 13u);
}
