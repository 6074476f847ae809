// Emitters: their defaults, their place in the system's list, and the rate that update() turns
// into particles.

#include "scene/ParticleEmitter.h"

#include <new>

#include <gtest/gtest.h>
#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/asan_interface.h>
#endif

#include "engine/Orvel.h"
#include "scene/ParticleSlice.h"
#include "scene/ParticleSystem.h"

using orvel::Orvel;
using orvel::vec2;

namespace {

class ParticleEmitterTest : public ::testing::Test {
protected:
    void SetUp() override {
        Orvel::currentTime = 0;
        Orvel::sync = 0;
    }
};

} // namespace

TEST_F(ParticleEmitterTest, ConstructorDefaults) {
    ParticleEmitter e;
    EXPECT_EQ(e.colorA.x, 1.0f);
    EXPECT_EQ(e.colorA.y, 1.0f);
    EXPECT_EQ(e.colorA.z, 1.0f);
    EXPECT_EQ(e.colorA.w, 1.0f);
    EXPECT_EQ(e.colorB.x, 1.0f);
    EXPECT_EQ(e.colorB.w, 1.0f);
    EXPECT_EQ(e.position.x, 0.0f);
    EXPECT_EQ(e.position.y, 0.0f);
    EXPECT_EQ(e.direction.x, 0.0f);
    EXPECT_EQ(e.direction.y, 0.0f);
    EXPECT_EQ(e.lifeMin, 1000.0f);
    EXPECT_EQ(e.lifeMax, 1000.0f);
    EXPECT_EQ(e.speedMin, 0.0f);
    EXPECT_EQ(e.speedMax, 1.0f);
    EXPECT_EQ(e.sizeStartMin, 16.0f);
    EXPECT_EQ(e.sizeStartMax, 16.0f);
    EXPECT_EQ(e.sizeEndMin, 16.0f);
    EXPECT_EQ(e.sizeEndMax, 16.0f);
    EXPECT_EQ(e.spread, 0.0f);
    EXPECT_EQ(e.radius, 0.0f);
    EXPECT_EQ(e.rate, 0u);
    EXPECT_EQ(e.slice, nullptr);
    EXPECT_EQ(e.reserved[0], 0u);
    EXPECT_EQ(e.reserved[1], 0u);
    EXPECT_EQ(e.lastEmit, 0u);
}

TEST_F(ParticleEmitterTest, CreateEmitterFeedsTheGivenSlice) {
    ParticleSystem ps(4);
    ParticleSlice* s = ps.createSlice(false, false);
    ParticleEmitter* e = ps.createEmitter(s);
    EXPECT_EQ(e->slice, s);
    ASSERT_EQ(ps.emitters.count, 1u);
    EXPECT_EQ(ps.emitters.data[0], e);
    ps.destroyEmitter(e);
    delete s;
}

TEST_F(ParticleEmitterTest, CreateEmitterWithNullFeedsTheDefaultSlice) {
    ParticleSystem ps(4);
    ParticleEmitter* e = ps.createEmitter(nullptr);
    EXPECT_EQ(e->slice, ps.defaultSlice);
    EXPECT_EQ(e->rate, 0u);
    EXPECT_EQ(e->lifeMin, 1000.0f);
}

TEST_F(ParticleEmitterTest, EmitterListDoublesWhenFull) {
    ParticleSystem ps(4);
    ParticleEmitter* first = nullptr;
    for (int i = 0; i < 129; ++i) {
        ParticleEmitter* e = ps.createEmitter(nullptr);
        if (i == 0) first = e;
    }
    EXPECT_EQ(ps.emitters.count, 129u);
    EXPECT_EQ(ps.emitters.capacity, 256u);
    EXPECT_EQ(ps.emitters.data[0], first);
}

TEST_F(ParticleEmitterTest, DestroyEmitterMovesTheLastIntoItsPlace) {
    ParticleSystem ps(4);
    ParticleEmitter* a = ps.createEmitter(nullptr);
    ParticleEmitter* b = ps.createEmitter(nullptr);
    ParticleEmitter* c = ps.createEmitter(nullptr);
    ps.destroyEmitter(a);
    ASSERT_EQ(ps.emitters.count, 2u);
    EXPECT_EQ(ps.emitters.data[0], c);
    EXPECT_EQ(ps.emitters.data[1], b);
}

TEST_F(ParticleEmitterTest, DestroyEmitterOfAnUnlistedPointerStillDeletesIt) {
    ParticleSystem ps(4);
    ParticleEmitter* listed = ps.createEmitter(nullptr);
    ParticleEmitter* stray = new ParticleEmitter();
    ps.destroyEmitter(stray);
    EXPECT_EQ(ps.emitters.count, 1u);
    EXPECT_EQ(ps.emitters.data[0], listed);
#if defined(__SANITIZE_ADDRESS__)
    // AddressSanitizer holds freed blocks back and marks them unreadable instead.
    EXPECT_TRUE(__asan_address_is_poisoned(stray));
#else
    // The allocator hands the block just freed on this thread straight back for the same
    // size: getting the stray's address again shows that it was deleted.
    void* again = ::operator new(sizeof(ParticleEmitter));
    EXPECT_EQ(again, (void*)stray);
    ::operator delete(again);
#endif
}

TEST_F(ParticleEmitterTest, DestroyEmitterAcceptsNull) {
    ParticleSystem ps(4);
    ps.createEmitter(nullptr);
    ps.destroyEmitter(nullptr);
    EXPECT_EQ(ps.emitters.count, 1u);
}

TEST_F(ParticleEmitterTest, IdleEmitterFollowsTheClock) {
    ParticleSystem ps(4);
    ParticleEmitter* e = ps.createEmitter(nullptr);
    Orvel::currentTime = 750;
    ps.update();
    EXPECT_EQ(e->lastEmit, 750u);
    EXPECT_EQ(ps.defaultSlice->count, 0u);
}

TEST_F(ParticleEmitterTest, Rate30EmitsNothingAfter20msAndKeepsLastEmit) {
    ParticleSystem ps(16);
    ParticleEmitter* e = ps.createEmitter(nullptr);
    Orvel::currentTime = 1000;
    ps.update(); // idle: lastEmit = 1000
    e->rate = 30;
    Orvel::currentTime = 1020;
    ps.update(); // 30 * 20 * 0.001 = 0.6 -> 0
    EXPECT_EQ(ps.defaultSlice->count, 0u);
    EXPECT_EQ(e->lastEmit, 1000u);
}

TEST_F(ParticleEmitterTest, Rate30EmitsOneAfter40msInTotal) {
    ParticleSystem ps(16);
    ParticleEmitter* e = ps.createEmitter(nullptr);
    Orvel::currentTime = 1000;
    ps.update();
    e->rate = 30;
    Orvel::currentTime = 1020;
    ps.update();
    Orvel::currentTime = 1040;
    ps.update(); // 30 * 40 * 0.001 = 1.2 -> 1
    EXPECT_EQ(ps.defaultSlice->count, 1u);
    EXPECT_EQ(e->lastEmit, 1040u);
    EXPECT_EQ(ps.particles[0].birthTime, 1040u);
}

TEST_F(ParticleEmitterTest, RateEmitsTheWholeParticlesDueAndDropsTheRest) {
    ParticleSystem ps(16);
    ParticleEmitter* e = ps.createEmitter(nullptr);
    e->lastEmit = 2000;
    e->rate = 100;
    Orvel::currentTime = 2055; // 100 * 55 * 0.001 = 5.5 -> 5
    ps.update();
    EXPECT_EQ(ps.defaultSlice->count, 5u);
    EXPECT_EQ(e->lastEmit, 2055u);
}

TEST_F(ParticleEmitterTest, EmitterSettingsReachItsParticles) {
    ParticleSystem ps(4);
    ParticleSlice* s = ps.createSlice(false, false);
    ParticleEmitter* e = ps.createEmitter(s);
    e->position = vec2(40, 60);
    e->direction = vec2(-2, 0);
    e->speedMin = e->speedMax = 30;
    e->lifeMin = e->lifeMax = 250.9f; // truncated to 250 ms
    e->sizeStartMin = e->sizeStartMax = 7;
    e->sizeEndMin = e->sizeEndMax = 3;
    e->colorA = e->colorB = orvel::vec4(0.25f, 0.5f, 0.75f, 0.0f);
    e->rate = 1000;
    e->lastEmit = 500;
    Orvel::currentTime = 501;
    ps.update();
    ASSERT_EQ(s->count, 1u);
    const Particle& p = ps.particles[0];
    EXPECT_EQ(p.slice, s);
    EXPECT_EQ(p.start.x, 40.0f);
    EXPECT_EQ(p.start.y, 60.0f);
    EXPECT_FLOAT_EQ(p.end.x, 10.0f);
    EXPECT_FLOAT_EQ(p.end.y, 60.0f);
    EXPECT_EQ(p.deathTime, 751u);
    EXPECT_EQ(p.sizeStart, 7.0f);
    EXPECT_EQ(p.sizeEnd, 3.0f);
    EXPECT_EQ(p.color.r, 0.25f);
    EXPECT_EQ(p.color.g, 0.5f);
    EXPECT_EQ(p.color.b, 0.75f);
    EXPECT_EQ(p.color.a, 1.0f);
    ps.destroyEmitter(e);
    delete s;
}
