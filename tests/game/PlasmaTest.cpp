// Plasma shots: firing from the ring, flight, hits with damage and sparks, and the ring's growth.

#include <cmath>

#include "engine/Random.h"
#include "game/EnemyPlasma.h"
#include "game/Plasma.h"
#include "scene/ParticleSlice.h"
#include "tests/support/GameSession.h"

using namespace testing_support;
using orvel::Orvel;
using orvel::vec2;
using orvel::vec3;

namespace {

class PlasmaTest : public SessionTest {
protected:
    void SetUp() override {
        SessionTest::SetUp();
        gun = keep(new Plasma());
        gun->position = vec3(1000, 1000, 0);
    }
    Plasma* gun = nullptr;
};

} // namespace

TEST_F(PlasmaTest, ShotLeavesTheMuzzleAtFullSpeed) {
    EXPECT_EQ(gun->shoot(vec2(3, 4)), 2.0f);
    const Plasma::Shot& s = gun->ring.shots[0];
    // (3, 4) / 5 x 750.
    EXPECT_FLOAT_EQ(s.velocity.x, 450.0f);
    EXPECT_FLOAT_EQ(s.velocity.y, 600.0f);
    EXPECT_EQ(s.position.x, 1000.0f);
    EXPECT_EQ(s.position.y, 1000.0f);
    EXPECT_EQ(s.start, START);
    EXPECT_EQ(s.finish, START + 1500);
    EXPECT_EQ(gun->ring.shotCursor, 0u);
}

TEST_F(PlasmaTest, RefusedShotTakesNoSlot) {
    gun->shoot(vec2(1, 0));
    setTime(START + 100);
    EXPECT_EQ(gun->shoot(vec2(1, 0)), 0.0f);
    EXPECT_EQ(gun->ring.shots[1].finish, 0u);
}

TEST_F(PlasmaTest, ShotMovesByVelocityTimesFrameLength) {
    Orvel::sync = 0.25f;
    gun->shoot(vec2(1, 0));
    setTime(START + 250);
    gun->update();
    EXPECT_FLOAT_EQ(gun->ring.shots[0].position.x, 1000.0f + 750.0f * 0.25f);
    EXPECT_FLOAT_EQ(gun->ring.shots[0].position.y, 1000.0f);
}

TEST_F(PlasmaTest, ShotEndsAtItsLife) {
    gun->shoot(vec2(1, 0));
    setTime(START + 1500);
    gun->update();
    // finish <= now: the slot is free and the shot no longer moves.
    EXPECT_EQ(gun->ring.shots[0].position.x, 1000.0f);
}

TEST_F(PlasmaTest, HitEndsTheShotDamagesAndSparks) {
    Orvel::sync = 0.1f;
    // Step from 1000 to 1075; the enemy's circle (radius 20 at 1050) is entered at 1030.
    DummyEnemy* e = addDummyInWorld(1050, 1000, 20);
    gun->shoot(vec2(1, 0));
    // The damage draw: 0.25 x (15 - 5) + 5.
    plantFloats({0.25f});
    const float damage = 7.5f;
    gun->update();
    EXPECT_EQ(e->hits, 1);
    EXPECT_FLOAT_EQ(e->taken, damage);
    EXPECT_EQ(gun->ring.shots[0].start, 0u);
    EXPECT_EQ(gun->ring.shots[0].finish, 0u);
    // The position still advances on the frame of the hit.
    EXPECT_FLOAT_EQ(gun->ring.shots[0].position.x, 1075.0f);
    ParticleSlice* slice = gun->ring.slices.data[0];
    EXPECT_EQ(slice->count, 52u);
    EXPECT_EQ(slice->prev, e->drawable);
    // A second update finds no live shot.
    gun->update();
    EXPECT_EQ(e->hits, 1);
}

TEST_F(PlasmaTest, SixtyFifthShotGrowsTheRingAndKeepsAllShots) {
    gun->rate = -1.0f;
    for (int i = 0; i < 64; ++i) {
        gun->position = vec3(1000.0f + i, 1000, 0);
        gun->shoot(vec2(1, 0));
    }
    EXPECT_EQ(gun->ring.shotCapacity, 64u);
    EXPECT_EQ(gun->ring.shotCursor, 63u);
    gun->position = vec3(2000, 1000, 0);
    gun->shoot(vec2(0, 1));
    EXPECT_EQ(gun->ring.shotCapacity, 128u);
    EXPECT_EQ(gun->ring.slices.count, 128u);
    EXPECT_EQ(gun->ring.shotCursor, 64u);
    for (int i = 0; i < 64; ++i) {
        EXPECT_EQ(gun->ring.shots[i].position.x, 1000.0f + i);
        EXPECT_EQ(gun->ring.shots[i].finish, START + 1500);
    }
    EXPECT_EQ(gun->ring.shots[64].position.x, 2000.0f);
    EXPECT_EQ(gun->ring.shots[64].velocity.y, 750.0f);
    for (unsigned i = 65; i < 128; ++i) EXPECT_EQ(gun->ring.shots[i].finish, 0u);
}

TEST_F(PlasmaTest, FreedSlotIsReusedBeforeGrowing) {
    gun->rate = -1.0f;
    for (int i = 0; i < 64; ++i) gun->shoot(vec2(1, 0));
    gun->ring.shots[10].finish = 0;
    gun->shoot(vec2(1, 0));
    EXPECT_EQ(gun->ring.shotCapacity, 64u);
    EXPECT_EQ(gun->ring.shotCursor, 10u);
}

TEST_F(PlasmaTest, EnemyPlasmaHitsFriends) {
    Orvel::sync = 0.1f;
    EnemyPlasma* enemyGun = keep(new EnemyPlasma());
    enemyGun->position = vec3(1000, 1000, 0);
    DummyFriend* f = new DummyFriend();
    f->position = vec2(1000, 1050);
    f->radius = 20;
    g_game->friends.push(f);
    addEnemy<DummyEnemy>(1000, 1040, 20);
    enemyGun->shoot(vec2(0, 1));
    // The damage draw: 0.5 x (7 - 2) + 2.
    plantFloats({0.5f});
    const float damage = 4.5f;
    enemyGun->update();
    EXPECT_EQ(f->hits, 1);
    EXPECT_FLOAT_EQ(f->taken, damage);
    EXPECT_EQ(enemyGun->ring.shots[0].finish, 0u);
}
