// Enemies: placement, fade-in, the friend search through the wrap, steering, damage and death.

#include "game/Enemy.h"

#include <cstring>

#include "engine/Random.h"
#include "game/EnemyPlasma.h"
#include "game/Friend.h"
#include "game/Powerup.h"
#include "game/ScoreCounter.h"
#include "game/TextIndicator.h"
#include "scene/Group.h"
#include "scene/ParticleSlice.h"
#include "scene/Sprite.h"
#include "scene/Text.h"
#include "tests/support/AllocationCounter.h"
#include "tests/support/GameSession.h"

using namespace testing_support;
using orvel::vec2;

namespace {

class EnemyTest : public SessionTest {
protected:
    // A fighter listed as nextWave lists it, already faded in, at rest at `at`.
    static Fighter* fighterAt(vec2 at) {
        Fighter* f = listInWorld(new Fighter());
        f->fadeEnd = 0.0f;
        f->position = at;
        f->target = at;
        f->velocity = vec2(0.0f, 0.0f);
        return f;
    }

    static Friend* friendAt(vec2 at) {
        Friend* f = new Friend();
        f->position = at;
        g_game->friends.push(f);
        return f;
    }
};

// Counts its updates.
class CountingActor : public Actor {
public:
    void update() override { ++updates; }
    int updates = 0;
};

// Hits `victim` hard enough to destroy it during its own update, as a weapon would.
class KillingActor : public Actor {
public:
    explicit KillingActor(Enemy* e) : victim(e) {}
    void update() override {
        if (victim) {
            killedAt = victim->position;
            victim->damage(1000.0f);
        }
        victim = nullptr;
    }
    Enemy* victim;
    vec2 killedAt;
};

} // namespace

TEST_F(EnemyTest, FirstSpotFarFromEveryFriendIsKept) {
    g_rand.init(42);
    orvel::Random r(42);
    Fighter* f = keep(new Fighter());
    const float x = r.randf(0.0f, WORLD);
    const float y = r.randf(0.0f, WORLD);
    const float tx = r.randf(0.0f, WORLD);
    const float ty = r.randf(0.0f, WORLD);
    EXPECT_EQ(f->position.x, x);
    EXPECT_EQ(f->position.y, y);
    EXPECT_EQ(f->target.x, tx);
    EXPECT_EQ(f->target.y, ty);
}

TEST_F(EnemyTest, OneSpotNearAFriendMakesAllFiveAttemptsAndTheLastStands) {
    // The first attempt lands on the friend; `nearest` stays 0 for the four attempts after it.
    orvel::Random r(42);
    float draws[12];
    for (float& d : draws) d = r.randf(0.0f, WORLD);
    friendAt(vec2(draws[0], draws[1]));
    g_rand.init(42);
    Fighter* f = keep(new Fighter());
    EXPECT_EQ(f->position.x, draws[8]);
    EXPECT_EQ(f->position.y, draws[9]);
    EXPECT_EQ(f->target.x, draws[10]);
    EXPECT_EQ(f->target.y, draws[11]);
}

TEST_F(EnemyTest, SpawnStartsAFadeFromInvisibleAndPutsTheWeaponInTheWorld) {
    Fighter* f = keep(new Fighter());
    EXPECT_EQ(f->fadeStart, (float)START);
    EXPECT_EQ(f->fadeEnd, (float)START + 750.0f);
    EXPECT_EQ(f->drawable->blendColor.a, 0);
    EXPECT_EQ(f->drawable->scale, 0.0f);
    EXPECT_TRUE(f->drawable->isVisible());
    EXPECT_EQ(f->weapon->parent, static_cast<Container*>(g_world));
    EXPECT_EQ(f->velocity.x, 0.0f);
    EXPECT_EQ(f->sightRange, 3000.0f);
    EXPECT_EQ(f->attackRange, 800.0f);
}

TEST_F(EnemyTest, HalfwayThroughTheFadeAlphaIs127AndScaleOneHalf) {
    Fighter* f = keep(new Fighter());
    setTime(START + 375);
    f->update();
    EXPECT_EQ(f->drawable->blendColor.a, 127);
    EXPECT_EQ(f->scale, 0.5f);
    EXPECT_EQ(f->drawable->scale, 0.5f);
}

TEST_F(EnemyTest, AfterTheFadeTheLastFadeFrameScaleStaysForLife) {
    Fighter* f = keep(new Fighter());
    // 16 ms frames: the last one inside the fade is at 736 ms, t = 736 / 750.
    for (uint32_t ms = 16; ms <= 752; ms += 16) {
        setTime(START + ms);
        f->update();
    }
    EXPECT_EQ(f->fadeEnd, 0.0f);
    EXPECT_EQ(f->drawable->blendColor.a, 255);
    EXPECT_FLOAT_EQ(f->drawable->scale, 736.0f / 750.0f);
    EXPECT_NE(f->drawable->scale, 1.0f);
    for (uint32_t ms = 768; ms <= 2000; ms += 16) {
        setTime(START + ms);
        f->update();
    }
    EXPECT_FLOAT_EQ(f->drawable->scale, 736.0f / 750.0f);
}

TEST_F(EnemyTest, FriendAcrossTheWorldEdgeIsChasedThroughTheWrap) {
    friendAt(vec2(700.0f, 2000.0f));
    Fighter* f = fighterAt(vec2(4000.0f, 2000.0f));
    f->update();
    // The copy at 700 + 4096 is 796 away: in sight and in attack range, beyond half of it, so
    // the fighter accelerates straight at it with 3 x 160.
    EXPECT_EQ(f->target.x, 4796.0f);
    EXPECT_EQ(f->target.y, 2000.0f);
    EXPECT_FLOAT_EQ(f->velocity.x, 480.0f * FRAME);
    EXPECT_EQ(f->velocity.y, 0.0f);
    EXPECT_FLOAT_EQ(f->position.x, 4000.0f + 480.0f * FRAME * FRAME);
}

TEST_F(EnemyTest, FriendOutOfSightLeavesTheWanderTarget) {
    friendAt(vec2(2000.0f, 2000.0f));
    Fighter* f = fighterAt(vec2(2000.0f, 5.0f));
    f->sightRange = 1000.0f;
    f->target = vec2(100.0f, 5.0f);
    f->update();
    EXPECT_EQ(f->target.x, 100.0f);
    EXPECT_EQ(f->target.y, 5.0f);
}

TEST_F(EnemyTest, ReachedWanderTargetIsReplacedByARandomPoint) {
    Fighter* f = fighterAt(vec2(1000.0f, 1000.0f));
    f->target = vec2(1010.0f, 1000.0f);
    g_rand.init(7);
    orvel::Random r(7);
    f->update();
    const float x = r.randf(0.0f, WORLD);
    const float y = r.randf(0.0f, WORLD);
    EXPECT_EQ(f->target.x, x);
    EXPECT_EQ(f->target.y, y);
}

TEST_F(EnemyTest, InsideAQuarterOfAttackRangeItCoastsOnItsVelocity) {
    friendAt(vec2(1100.0f, 1000.0f));
    Fighter* f = fighterAt(vec2(1000.0f, 1000.0f));
    f->velocity = vec2(50.0f, -20.0f);
    f->update();
    EXPECT_EQ(f->velocity.x, 50.0f);
    EXPECT_EQ(f->velocity.y, -20.0f);
    EXPECT_FLOAT_EQ(f->position.x, 1000.0f + 50.0f * FRAME);
    EXPECT_FLOAT_EQ(f->position.y, 1000.0f - 20.0f * FRAME);
}

TEST_F(EnemyTest, BetweenAQuarterAndAHalfOfAttackRangeItStrafesSideways) {
    friendAt(vec2(1300.0f, 1000.0f));
    Fighter* f = fighterAt(vec2(1000.0f, 1000.0f));
    f->update();
    // (480, 0) x -0.5 = (-240, 0), turned (x, y) -> (-y, x): (0, -240).
    EXPECT_EQ(f->velocity.x, 0.0f);
    EXPECT_FLOAT_EQ(f->velocity.y, -240.0f * FRAME);
}

TEST_F(EnemyTest, AtExactlyAQuarterOfAttackRangeItStillStrafes) {
    friendAt(vec2(1200.0f, 1000.0f));
    Fighter* f = fighterAt(vec2(1000.0f, 1000.0f));
    f->update();
    EXPECT_FLOAT_EQ(f->velocity.y, -240.0f * FRAME);
}

TEST_F(EnemyTest, AtExactlyHalfOfAttackRangeItClosesIn) {
    friendAt(vec2(1400.0f, 1000.0f));
    Fighter* f = fighterAt(vec2(1000.0f, 1000.0f));
    f->update();
    EXPECT_FLOAT_EQ(f->velocity.x, 480.0f * FRAME);
    EXPECT_EQ(f->velocity.y, 0.0f);
}

TEST_F(EnemyTest, EachVelocityComponentIsClampedToMaxSpeed) {
    Fighter* f = fighterAt(vec2(1000.0f, 1000.0f));
    f->target = vec2(3000.0f, 3000.0f);
    f->velocity = vec2(159.0f, -300.0f);
    f->update();
    EXPECT_EQ(f->velocity.x, 160.0f);
    EXPECT_EQ(f->velocity.y, -160.0f);
    EXPECT_FLOAT_EQ(f->position.x, 1000.0f + 160.0f * FRAME);
}

TEST_F(EnemyTest, HitThatLeavesHitPointsReturnsTrue) {
    g_game->difficulty = 1.1f;
    Fighter* f = fighterAt(vec2(1000.0f, 1000.0f));
    EXPECT_TRUE(f->damage(10.0f));
    EXPECT_FLOAT_EQ(f->hitPoints, 30.0f * 1.1f - 10.0f);
    EXPECT_EQ(g_game->enemies.count, 1u);
}

TEST_F(EnemyTest, LethalHitReturnsFalseWithOneScoreTextAndOneExplosion) {
    g_game->difficulty = 1.1f;
    g_game->scoreCounter = new ScoreCounter();
    Fighter* f = fighterAt(vec2(1000.0f, 1200.0f));
    f->dropChance = 0.0f;
    EXPECT_FALSE(f->damage(100.0f));

    // Gone from both lists: no weapon finds it again.
    EXPECT_EQ(g_game->enemies.count, 0u);
    ASSERT_EQ(g_game->actors.count, 1u);
    TextIndicator* t = dynamic_cast<TextIndicator*>(g_game->actors.data[0]);
    ASSERT_NE(t, nullptr);
    EXPECT_STREQ(t->text->text.getCString(), "55");
    EXPECT_EQ(t->startTime, START);
    EXPECT_EQ(t->position.x, 1000.0f);
    EXPECT_EQ(t->position.y, 1200.0f);
    EXPECT_EQ(t->text->parent, static_cast<Container*>(g_world));

    EXPECT_EQ(g_game->explosionSlice->count, 192u);
    EXPECT_EQ(g_game->explosionSlice->parent, static_cast<Container*>(g_world));
    EXPECT_EQ(g_game->scoreCounter->value, 55);
    EXPECT_EQ(g_game->powerups.count, 0u);
}

TEST_F(EnemyTest, DestroyWithCertainDropLeavesAPowerupBeforeTheEnemyInTheWorld) {
    Fighter* f = fighterAt(vec2(800.0f, 900.0f));
    f->dropChance = 2.0f;
    f->destroy();
    ASSERT_EQ(g_game->powerups.count, 1u);
    Powerup* p = g_game->powerups.data[0];
    EXPECT_EQ(p->position.x, 800.0f);
    EXPECT_EQ(p->position.y, 900.0f);
    EXPECT_EQ(p->drawable->parent, static_cast<Container*>(g_world));
    ASSERT_EQ(g_game->actors.count, 1u);
    EXPECT_EQ(g_game->actors.data[0], p);
    EXPECT_EQ(g_game->enemies.count, 0u);
}

TEST_F(EnemyTest, EnemyDestroyedDuringTheActorLoopIsReplacedByTheLastActor) {
    Fighter* e = fighterAt(vec2(1000.0f, 1000.0f));
    e->dropChance = 0.0f;
    KillingActor* killer = new KillingActor(e);
    CountingActor* last = new CountingActor();
    g_game->actors.push(killer);
    g_game->actors.push(last);

    g_game->update();

    // [e, killer, last]: e's slot gets `last`, which the loop has passed, so it waits a frame;
    // the score text pushed during the loop is updated at once.
    ASSERT_EQ(g_game->actors.count, 3u);
    EXPECT_EQ(g_game->actors.data[0], last);
    EXPECT_EQ(g_game->actors.data[1], killer);
    EXPECT_EQ(last->updates, 0);
    TextIndicator* t = dynamic_cast<TextIndicator*>(g_game->actors.data[2]);
    ASSERT_NE(t, nullptr);
    EXPECT_FLOAT_EQ(t->position.y, killer->killedAt.y - 35.0f * FRAME);

    g_game->update();
    EXPECT_EQ(last->updates, 1);
}

TEST_F(EnemyTest, Probe2ShowsTheProbeArtAt96InsteadOf82) {
    Probe* probe = keep(new Probe());
    Probe2* probe2 = keep(new Probe2());
    EXPECT_EQ(probe->sprite->texture, Resources::enemy_probe_tex);
    EXPECT_EQ(probe->sprite->size.x, 82.0f);
    EXPECT_EQ(probe2->sprite->texture, Resources::enemy_probe_tex);
    EXPECT_EQ(probe2->glow->texture, Resources::enemy_probe_glow_tex);
    EXPECT_EQ(probe2->sprite->size.x, 96.0f);
    EXPECT_EQ(probe2->sprite->size.y, 96.0f);
    EXPECT_EQ(probe2->glow->getDrawMode(), (unsigned)BlendAdd);
    EXPECT_EQ(probe2->sprite->parent, static_cast<Container*>(probe2->group));
    EXPECT_EQ(probe2->drawable, static_cast<Drawable*>(probe2->group));
}

TEST_F(EnemyTest, EveryTypeCarriesItsArtSizeAndNumbers) {
    g_game->difficulty = 2.0f;
    struct Row {
        EnemyShip* e;
        orvel::Texture* body;
        orvel::Texture* glow;
        float size, radius, speed, drop, hp;
        int score;
    };
    const Row rows[] = {
        {keep(new Fighter()), Resources::enemy_fighter_tex, Resources::enemy_fighter_glow_tex, 96, 32, 160, 0.4f, 60, 100},
        {keep(new Fighter2()), Resources::enemy_fighter2_tex, Resources::enemy_fighter2_glow_tex, 136, 50, 120, 0.55f, 130, 250},
        {keep(new Hammerhead()), Resources::enemy_hammerhead_tex, Resources::enemy_hammerhead_glow_tex, 136, 50, 95, 0.7f, 190, 700},
        {keep(new Probe()), Resources::enemy_probe_tex, Resources::enemy_probe_glow_tex, 82, 32, 195, 0.1f, 30, 200},
        {keep(new Probe2()), Resources::enemy_probe_tex, Resources::enemy_probe_glow_tex, 96, 42, 235, 0.15f, 50, 350},
        {keep(new Hammerhead2()), Resources::enemy_hammerhead2_tex, Resources::enemy_hammerhead2_glow_tex, 172, 80, 65, 0.9f, 330, 1500},
        {keep(new Probe3()), Resources::enemy_probe3_tex, Resources::enemy_probe3_glow_tex, 116, 42, 265, 0.2f, 70, 450},
    };
    for (const Row& r : rows) {
        SCOPED_TRACE(r.size);
        EXPECT_EQ(r.e->sprite->texture, r.body);
        EXPECT_EQ(r.e->glow->texture, r.glow);
        EXPECT_EQ(r.e->glow->size.x, r.size);
        EXPECT_EQ(r.e->radius, r.radius);
        EXPECT_EQ(r.e->maxSpeed, r.speed);
        EXPECT_EQ(r.e->dropChance, r.drop);
        EXPECT_EQ(r.e->hitPoints, r.hp);
        EXPECT_EQ(r.e->score, r.score);
        EXPECT_EQ(r.e->sightRange, 3000.0f);
    }
}

TEST_F(EnemyTest, SteadyStateUpdatesAllocateNothing) {
    friendAt(vec2(2048.0f, 2048.0f));
    Fighter* fighters[20];
    for (int i = 0; i < 20; ++i) fighters[i] = fighterAt(vec2(1500.0f + 50.0f * i, 1800.0f + 20.0f * i));
    uint32_t ms = START;
    auto frames = [&ms, &fighters](int n) {
        for (int k = 0; k < n; ++k) {
            ms += 16;
            setTime(ms);
            for (Fighter* f : fighters) f->update();
        }
    };
    // Warm-up: every weapon has fired and its shots have lived out a full life.
    frames(300);
    const std::size_t before = testing_support::allocationCount();
    frames(300);
    EXPECT_EQ(testing_support::allocationCount() - before, 0u);
}

TEST_F(EnemyTest, KillsWithScorePopupsAndPowerupDropsAllocateNothing) {
#if defined(__SANITIZE_ADDRESS__)
    GTEST_SKIP() << "freed blocks are not kept under AddressSanitizer";
#endif
    g_game->init();
    g_game->nextWave();
    const unsigned spawned = g_game->enemies.count;
    ASSERT_EQ(spawned, 13u);
    Enemy* doomed[13];
    for (unsigned i = 0; i < spawned; ++i) {
        doomed[i] = g_game->enemies.data[i];
        doomed[i]->dropChance = 1.0f;
    }
    const unsigned actorsBefore = g_game->actors.count;

    const std::size_t before = testing_support::allocationCount();
    for (Enemy* e : doomed) EXPECT_FALSE(e->damage(1.0e9f));
    EXPECT_EQ(testing_support::allocationCount() - before, 0u);

    EXPECT_EQ(g_game->enemies.count, 0u);
    EXPECT_EQ(g_game->powerups.count, 13u);
    // Each kill leaves a popup and a powerup among the actors in place of its enemy.
    EXPECT_EQ(g_game->actors.count, actorsBefore + 13u);
}
