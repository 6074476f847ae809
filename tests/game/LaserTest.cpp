// Laser beams: the ring, the aim that follows the mouse, damage per second of contact, the
// spark emitters and the linear fade.

#include "engine/Random.h"
#include "game/Laser.h"
#include "scene/ParticleEmitter.h"
#include "scene/ParticleSlice.h"
#include "tests/support/GameSession.h"

using namespace testing_support;
using orvel::Orvel;
using orvel::vec2;
using orvel::vec3;

namespace {

// The default camera sits at (640, 360) with zoom 1, so a mouse pixel is the same world point.
class LaserTest : public SessionTest {
protected:
    void SetUp() override {
        SessionTest::SetUp();
        laser = keep(new Laser());
        laser->position = vec3(500, 360, 0);
        setInput(0, 1000, 360);
    }
    Laser* laser = nullptr;
};

} // namespace

TEST_F(LaserTest, ShootStartsTheBeamUnderTheCursor) {
    EXPECT_EQ(laser->shoot(vec2(0, 0)), 8.0f);
    EXPECT_EQ(laser->nextBeam, 1u);
    const Laser::Beam& b = laser->beams[0];
    EXPECT_EQ(b.width, 7.0f);
    EXPECT_EQ(b.start, (float)START);
    EXPECT_EQ(b.finish, (float)(START + 650));
    EXPECT_EQ(b.color.r, 76);
    EXPECT_EQ(b.color.g, 76);
    EXPECT_EQ(b.color.b, 255);
    EXPECT_EQ(b.color.a, 224);
}

TEST_F(LaserTest, RingWrapsAfterThirtyTwoBeams) {
    laser->rate = -1.0f;
    for (int i = 0; i < 32; ++i) laser->shoot(vec2(0, 0));
    EXPECT_EQ(laser->nextBeam, 0u);
    setTime(START + 10);
    laser->shoot(vec2(0, 0));
    EXPECT_EQ(laser->beams[0].start, (float)(START + 10));
    EXPECT_EQ(laser->nextBeam, 1u);
}

TEST_F(LaserTest, UnblockedBeamReaches1280TowardsTheMouse) {
    laser->shoot(vec2(0, 0));
    laser->update();
    EXPECT_FLOAT_EQ(laser->beams[0].end.x, 500.0f + 1280.0f);
    EXPECT_FLOAT_EQ(laser->beams[0].end.y, 360.0f);
    EXPECT_EQ(laser->emitters.data[0]->rate, 0u);
}

TEST_F(LaserTest, BeamFollowsTheMouseDuringItsLife) {
    laser->shoot(vec2(0, 0));
    setTime(START + 100);
    // The mouse moves straight below the muzzle.
    setInput(0, 500, 700);
    laser->update();
    EXPECT_FLOAT_EQ(laser->beams[0].end.x, 500.0f);
    EXPECT_FLOAT_EQ(laser->beams[0].end.y, 360.0f + 1280.0f);
}

TEST_F(LaserTest, HalfwayTheBeamHasHalfWidthAndAlpha) {
    laser->shoot(vec2(0, 0));
    setTime(START + 325);
    laser->update();
    // f = 1 - 325 / 650 = 0.5: width 7 x 0.5, alpha 224 x 0.5.
    EXPECT_FLOAT_EQ(laser->beams[0].width, 3.5f);
    EXPECT_EQ(laser->beams[0].color.a, 112);
}

TEST_F(LaserTest, DamagePerSecondOfContactScaledByFrameTime) {
    Orvel::sync = 0.02f;
    DummyEnemy* e = addDummyInWorld(800, 360, 20);
    laser->shoot(vec2(0, 0));
    setTime(START + 325);
    // The damage draw: (0.75 x (85 - 65) + 65) per second, for 0.02 s.
    plantFloats({0.75f});
    const float damage = 80.0f * 0.02f;
    laser->update();
    EXPECT_EQ(e->hits, 1);
    EXPECT_FLOAT_EQ(e->taken, damage);
    // The beam ends where it enters the enemy; the sparks fly back towards the ship and are
    // sized from the width before this frame's fade (7).
    EXPECT_FLOAT_EQ(laser->beams[0].end.x, 780.0f);
    EXPECT_FLOAT_EQ(laser->beams[0].end.y, 360.0f);
    ParticleEmitter* em = laser->emitters.data[0];
    EXPECT_EQ(em->rate, 300u);
    EXPECT_FLOAT_EQ(em->position.x, 780.0f);
    EXPECT_FLOAT_EQ(em->direction.x, -280.0f);
    EXPECT_FLOAT_EQ(em->direction.y, 0.0f);
    EXPECT_FLOAT_EQ(em->sizeStartMin, 35.0f);
    EXPECT_FLOAT_EQ(em->sizeStartMax, 42.0f);
    EXPECT_EQ(laser->slices.data[0]->prev, e->drawable);
}

TEST_F(LaserTest, NoDamageOnceTheLifeIsOver) {
    DummyEnemy* e = addDummyInWorld(800, 360, 20);
    laser->shoot(vec2(0, 0));
    setTime(START + 649);
    laser->update();
    EXPECT_EQ(e->hits, 1);
    setTime(START + 650);
    laser->update();
    EXPECT_EQ(e->hits, 1);
    EXPECT_EQ(laser->emitters.data[0]->rate, 0u);
}

TEST_F(LaserTest, EmitterGoesIdleWhenTheBeamLeavesTheEnemy) {
    addDummyInWorld(800, 360, 20);
    laser->shoot(vec2(0, 0));
    laser->update();
    EXPECT_EQ(laser->emitters.data[0]->rate, 300u);
    setTime(START + 16);
    setInput(0, 500, 700);
    laser->update();
    EXPECT_EQ(laser->emitters.data[0]->rate, 0u);
}
