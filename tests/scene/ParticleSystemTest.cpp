// The particle pool: slots, the ring cursor, emission and its random draws, wind, emitters.

#include "scene/ParticleSystem.h"

#include <cmath>
#include <cstdint>
#include <vector>

#include <gtest/gtest.h>

#include "engine/Orvel.h"
#include "engine/Random.h"
#include "scene/ParticleEmitter.h"
#include "scene/ParticleSlice.h"

using orvel::Orvel;
using orvel::Random;
using orvel::vec2;
using orvel::vec4;

namespace {

const int SEED = (int)0xd34db33f;

// The state ParticleSystem::random is in before the first test runs, i.e. as the program starts.
struct RandomAtStart {
    int intCursor = -1;
    int floatCursor = -1;
    std::vector<int> ints;
    std::vector<float> floats;
};
RandomAtStart g_randomAtStart;

class RandomSnapshot : public ::testing::Environment {
public:
    void SetUp() override {
        // Repeated runs set the environment up again; only the first sees the start.
        if (!g_randomAtStart.ints.empty()) return;
        const Random& r = ParticleSystem::random;
        g_randomAtStart.intCursor = r.intCursor;
        g_randomAtStart.floatCursor = r.floatCursor;
        g_randomAtStart.ints.assign(r.intTable, r.intTable + Random::TABLE_SIZE);
        g_randomAtStart.floats.assign(r.floatTable, r.floatTable + Random::TABLE_SIZE);
    }
};
::testing::Environment* const g_snapshot = ::testing::AddGlobalTestEnvironment(new RandomSnapshot);

const vec4 WHITE(1, 1, 1, 1);

// Emits one particle at `position` with fixed settings: no jitter, no travel, life 1000 ms.
void emitAt(ParticleSystem& ps, ParticleSlice* slice, const vec2& position) {
    ps.emit(slice, 1, 1000, 1000, position, 0, 16, 16, 16, 16, vec2(0, 0), 0, 0, 0, WHITE, WHITE);
}

// The particles of a slice from head to tail.
std::vector<Particle*> listOf(const ParticleSlice* slice) {
    std::vector<Particle*> out;
    for (Particle* p = slice->head; p; p = p->next) out.push_back(p);
    return out;
}

class ParticleSystemTest : public ::testing::Test {
protected:
    void SetUp() override {
        Orvel::currentTime = 0;
        Orvel::sync = 0;
    }
};

} // namespace

TEST(ParticleSystem, StartsSeededWithD34DB33F) {
    Random fresh(SEED);
    EXPECT_EQ(g_randomAtStart.intCursor, 0);
    EXPECT_EQ(g_randomAtStart.floatCursor, 0);
    ASSERT_EQ(g_randomAtStart.ints.size(), (size_t)Random::TABLE_SIZE);
    for (int i = 0; i < Random::TABLE_SIZE; ++i) {
        ASSERT_EQ(g_randomAtStart.ints[i], fresh.intTable[i]) << "int slot " << i;
        ASSERT_EQ(g_randomAtStart.floats[i], fresh.floatTable[i]) << "float slot " << i;
    }
}

TEST_F(ParticleSystemTest, ConstructorFillsUsableSlotsAndLeavesTheSpareZeroed) {
    ParticleSystem ps(4);
    ASSERT_NE(ps.particles, nullptr);
    EXPECT_EQ(ps.capacity, 4u);
    for (unsigned i = 0; i < 4; ++i) {
        const Particle& p = ps.particles[i];
        EXPECT_EQ(p.slice, nullptr);
        EXPECT_EQ(p.next, nullptr);
        EXPECT_EQ(p.prev, nullptr);
        EXPECT_EQ(p.color.r, 1.0f);
        EXPECT_EQ(p.color.g, 1.0f);
        EXPECT_EQ(p.color.b, 1.0f);
        EXPECT_EQ(p.color.a, 1.0f);
        EXPECT_EQ(p.start.x, 0.0f);
        EXPECT_EQ(p.start.y, 0.0f);
        EXPECT_EQ(p.end.x, 0.0f);
        EXPECT_EQ(p.end.y, 0.0f);
        EXPECT_EQ(p.sizeStart, 16.0f);
        EXPECT_EQ(p.sizeEnd, 16.0f);
        EXPECT_EQ(p.birthTime, 0u);
        EXPECT_EQ(p.deathTime, 0u);
    }
    const Particle& spare = ps.particles[4];
    EXPECT_EQ(spare.color.r, 0.0f);
    EXPECT_EQ(spare.color.a, 0.0f);
    EXPECT_EQ(spare.sizeStart, 0.0f);
    EXPECT_EQ(spare.sizeEnd, 0.0f);
}

TEST_F(ParticleSystemTest, ConstructorDefaults) {
    ParticleSystem ps(8);
    EXPECT_EQ(ps.emitters.count, 0u);
    EXPECT_EQ(ps.emitters.capacity, 128u);
    EXPECT_EQ(ps.wind.x, 0.0f);
    EXPECT_EQ(ps.wind.y, 0.0f);
    EXPECT_EQ(ps.drawMode, 0x200u);
    EXPECT_EQ(ps.cursor, 0u);
    EXPECT_EQ(ps.userFlag, 0u);
    ASSERT_NE(ps.defaultSlice, nullptr);
    EXPECT_EQ(ps.defaultSlice->system, &ps);
    EXPECT_FALSE(ps.defaultSlice->removeWhenEmpty);
    EXPECT_FALSE(ps.defaultSlice->deleteWhenEmpty);
    EXPECT_EQ(ps.defaultSlice->count, 0u);
}

TEST_F(ParticleSystemTest, SlotIndexPastCapacityGivesTheSpareRecord) {
    ParticleSystem ps(4);
    EXPECT_EQ(&ps.slot(3), &ps.particles[3]);
    EXPECT_EQ(&ps.slot(4), &ps.particles[4]);
    EXPECT_EQ(&ps.slot(1000), &ps.particles[4]);
}

TEST_F(ParticleSystemTest, EmitTakesSlotsInRingOrder) {
    ParticleSystem ps(4);
    emitAt(ps, nullptr, vec2(1, 0));
    emitAt(ps, nullptr, vec2(2, 0));
    EXPECT_EQ(ps.cursor, 2u);
    EXPECT_EQ(ps.particles[0].start.x, 1.0f);
    EXPECT_EQ(ps.particles[1].start.x, 2.0f);
    EXPECT_EQ(ps.particles[2].slice, nullptr);
}

TEST_F(ParticleSystemTest, FullPoolOfFourGivesTheOldestSlotsToParticlesFiveAndSix) {
    ParticleSystem ps(4);
    ParticleSlice* slice = ps.createSlice(false, false);
    for (int i = 1; i <= 6; ++i) emitAt(ps, slice, vec2((float)i, 0));

    // Particles 5 and 6 sit in slots 0 and 1; 1 and 2 are gone from the slice.
    EXPECT_EQ(ps.particles[0].start.x, 5.0f);
    EXPECT_EQ(ps.particles[1].start.x, 6.0f);
    EXPECT_EQ(ps.particles[2].start.x, 3.0f);
    EXPECT_EQ(ps.particles[3].start.x, 4.0f);
    EXPECT_EQ(ps.cursor, 2u);
    EXPECT_EQ(slice->count, 4u);
    std::vector<Particle*> expected = {&ps.particles[2], &ps.particles[3], &ps.particles[0], &ps.particles[1]};
    EXPECT_EQ(listOf(slice), expected);
    EXPECT_EQ(slice->tail, &ps.particles[1]);
    EXPECT_EQ(ps.particles[2].prev, nullptr);
    delete slice;
}

TEST_F(ParticleSystemTest, ReusedSlotsLeaveTheirOldSlice) {
    ParticleSystem ps(4);
    ParticleSlice* a = ps.createSlice(false, false);
    ParticleSlice* b = ps.createSlice(false, false);
    for (int i = 1; i <= 4; ++i) emitAt(ps, a, vec2((float)i, 0));
    emitAt(ps, b, vec2(5, 0));
    emitAt(ps, b, vec2(6, 0));

    EXPECT_EQ(a->count, 2u);
    EXPECT_EQ(a->head, &ps.particles[2]);
    EXPECT_EQ(a->tail, &ps.particles[3]);
    EXPECT_EQ(ps.particles[2].slice, a);
    EXPECT_EQ(ps.particles[3].next, nullptr);

    EXPECT_EQ(b->count, 2u);
    EXPECT_EQ(b->head, &ps.particles[0]);
    EXPECT_EQ(b->tail, &ps.particles[1]);
    EXPECT_EQ(ps.particles[0].slice, b);
    EXPECT_EQ(ps.particles[0].prev, nullptr);
    EXPECT_EQ(ps.particles[0].next, &ps.particles[1]);
    EXPECT_EQ(ps.particles[1].prev, &ps.particles[0]);
    delete a;
    delete b;
}

TEST_F(ParticleSystemTest, NullSliceMeansTheDefaultSlice) {
    ParticleSystem ps(4);
    emitAt(ps, nullptr, vec2(0, 0));
    EXPECT_EQ(ps.particles[0].slice, ps.defaultSlice);
    EXPECT_EQ(ps.defaultSlice->count, 1u);
}

TEST_F(ParticleSystemTest, RadiusZeroStartsEveryParticleAtThePosition) {
    ParticleSystem ps(16);
    ps.emit(nullptr, 10, 100, 900, vec2(37.5f, -12.25f), 0, 4, 8, 1, 2, vec2(1, 1), 10, 50, 360, vec4(0, 0, 0, 1),
            WHITE);
    for (unsigned i = 0; i < 10; ++i) {
        EXPECT_EQ(ps.particles[i].start.x, 37.5f) << i;
        EXPECT_EQ(ps.particles[i].start.y, -12.25f) << i;
    }
}

TEST_F(ParticleSystemTest, EndLiesTheSpeedAlongTheNormalisedDirection) {
    ParticleSystem ps(4);
    // Direction (0, 10) normalises to (0, 1); with spread 0 the angle is 0 and speed 20.
    ps.emit(nullptr, 1, 500, 500, vec2(5, 5), 0, 16, 16, 16, 16, vec2(0, 10), 20, 20, 0, WHITE, WHITE);
    EXPECT_FLOAT_EQ(ps.particles[0].end.x, 5.0f);
    EXPECT_FLOAT_EQ(ps.particles[0].end.y, 25.0f);
}

TEST_F(ParticleSystemTest, EmitRecordsBirthAndDeathTimes) {
    ParticleSystem ps(4);
    Orvel::currentTime = 1000;
    ps.emit(nullptr, 1, 500, 500, vec2(0, 0), 0, 16, 16, 16, 16, vec2(0, 0), 0, 0, 0, WHITE, WHITE);
    EXPECT_EQ(ps.particles[0].birthTime, 1000u);
    EXPECT_EQ(ps.particles[0].deathTime, 1500u);
}

TEST_F(ParticleSystemTest, ColoursAreClampedAndAlphaIsAlwaysOne) {
    ParticleSystem ps(4);
    vec4 c(2.0f, -1.0f, 0.5f, 0.2f);
    ps.emit(nullptr, 1, 500, 500, vec2(0, 0), 0, 16, 16, 16, 16, vec2(0, 0), 0, 0, 0, c, c);
    EXPECT_EQ(ps.particles[0].color.r, 1.0f);
    EXPECT_EQ(ps.particles[0].color.g, 0.0f);
    EXPECT_EQ(ps.particles[0].color.b, 0.5f);
    EXPECT_EQ(ps.particles[0].color.a, 1.0f);
}

// The draws of each particle, in the documented order, from a separate generator with the seed.
TEST_F(ParticleSystemTest, FirstParticlesAfterSeedingFollowTheDocumentedDrawOrder) {
    // Back to the generator's state at program start.
    ParticleSystem::random.init(SEED);
    Random ref(SEED);

    ParticleSystem ps(8);
    Orvel::currentTime = 5000;
    const vec2 position(10, 20);
    const float radius = 5;
    const vec4 colorA(0.2f, 0.3f, 0.4f, 0.5f);
    const vec4 colorB(0.6f, 0.9f, 0.8f, 0.1f);
    ps.emit(nullptr, 3, 100, 300, position, radius, 4, 8, 1, 2, vec2(3, 4), 10, 30, 90, colorA, colorB);

    // Direction (3, 4) has length 5; half of a 90 degree spread is pi / 4.
    const float dx = 0.6f, dy = 0.8f;
    const float h = 0.78539816f;
    for (unsigned i = 0; i < 3; ++i) {
        float ox = ref.randf(-1.0f, 1.0f);
        float oy = ref.randf(-1.0f, 1.0f);
        float length = ref.randf(radius);
        float l = std::sqrt(ox * ox + oy * oy);
        float offX = ox / l * length;
        float offY = oy / l * length;
        float b = ref.randf(0.4f, 0.8f);
        float g = ref.randf(0.3f, 0.9f);
        float r = ref.randf(0.2f, 0.6f);
        float speed = ref.randf(10.0f, 30.0f);
        float angle = ref.randf(-h, h);
        int death = ref.randi(5100, 5300);
        float sizeStart = ref.randf(4.0f, 8.0f);
        float sizeEnd = ref.randf(1.0f, 2.0f);

        float vx = (dx * std::cos(angle) - dy * std::sin(angle)) * speed;
        float vy = (dy * std::cos(angle) + dx * std::sin(angle)) * speed;

        const Particle& p = ps.particles[i];
        EXPECT_NEAR(p.start.x, 10.0f + offX, 1e-4f) << i;
        EXPECT_NEAR(p.start.y, 20.0f + offY, 1e-4f) << i;
        EXPECT_NEAR(p.end.x, 10.0f + 2 * offX + vx, 1e-3f) << i;
        EXPECT_NEAR(p.end.y, 20.0f + 2 * offY + vy, 1e-3f) << i;
        EXPECT_FLOAT_EQ(p.color.r, r) << i;
        EXPECT_FLOAT_EQ(p.color.g, g) << i;
        EXPECT_FLOAT_EQ(p.color.b, b) << i;
        EXPECT_EQ(p.color.a, 1.0f) << i;
        EXPECT_EQ(p.birthTime, 5000u) << i;
        EXPECT_EQ(p.deathTime, (uint32_t)death) << i;
        EXPECT_FLOAT_EQ(p.sizeStart, sizeStart) << i;
        EXPECT_FLOAT_EQ(p.sizeEnd, sizeEnd) << i;
    }
    // Nothing else was drawn: both generators stand at the same place.
    EXPECT_EQ(ParticleSystem::random.intCursor, ref.intCursor);
    EXPECT_EQ(ParticleSystem::random.floatCursor, ref.floatCursor);
}

// With radius 0 no offset is drawn, and equal lifetimes draw no int either.
TEST_F(ParticleSystemTest, RadiusZeroAndFixedLifeSkipTheirDraws) {
    ParticleSystem::random.init(SEED);
    ParticleSystem ps(4);
    ps.emit(nullptr, 2, 700, 700, vec2(0, 0), 0, 4, 8, 1, 2, vec2(1, 0), 10, 30, 0, WHITE, WHITE);
    // Per particle: b, g, r, speed, angle, sizeStart, sizeEnd.
    EXPECT_EQ(ParticleSystem::random.floatCursor, 14);
    EXPECT_EQ(ParticleSystem::random.intCursor, 0);
}

TEST_F(ParticleSystemTest, WindMovesEveryEndPointFreeOrNotButNotTheSpare) {
    ParticleSystem ps(4);
    emitAt(ps, nullptr, vec2(100, 100));
    ps.wind = vec2(10, -4);
    Orvel::sync = 0.5f;
    ps.update();
    EXPECT_FLOAT_EQ(ps.particles[0].end.x, 105.0f);
    EXPECT_FLOAT_EQ(ps.particles[0].end.y, 98.0f);
    EXPECT_FLOAT_EQ(ps.particles[0].start.x, 100.0f);
    for (unsigned i = 1; i < 4; ++i) {
        EXPECT_FLOAT_EQ(ps.particles[i].end.x, 5.0f) << i;
        EXPECT_FLOAT_EQ(ps.particles[i].end.y, -2.0f) << i;
    }
    EXPECT_EQ(ps.particles[4].end.x, 0.0f);
    EXPECT_EQ(ps.particles[4].end.y, 0.0f);
}

TEST_F(ParticleSystemTest, NoWindLeavesEndPointsAlone) {
    ParticleSystem ps(4);
    emitAt(ps, nullptr, vec2(100, 100));
    Orvel::sync = 0.5f;
    ps.update();
    EXPECT_EQ(ps.particles[0].end.x, 100.0f);
    EXPECT_EQ(ps.particles[1].end.x, 0.0f);
}

TEST_F(ParticleSystemTest, CreateSliceSetsBothFlagsAndTheSystem) {
    ParticleSystem ps(4);
    ParticleSlice* s = ps.createSlice(true, false);
    EXPECT_EQ(s->system, &ps);
    EXPECT_TRUE(s->removeWhenEmpty);
    EXPECT_FALSE(s->deleteWhenEmpty);
    EXPECT_EQ(s->head, nullptr);
    EXPECT_EQ(s->tail, nullptr);
    EXPECT_EQ(s->count, 0u);
    delete s;
}

TEST_F(ParticleSystemTest, DeletingASliceFreesItsParticles) {
    ParticleSystem ps(4);
    ParticleSlice* s = ps.createSlice(false, false);
    emitAt(ps, s, vec2(0, 0));
    emitAt(ps, s, vec2(0, 0));
    delete s;
    EXPECT_EQ(ps.particles[0].slice, nullptr);
    EXPECT_EQ(ps.particles[1].slice, nullptr);
    EXPECT_EQ(ps.particles[0].next, nullptr);
    // The slot is reused without reaching into the deleted slice.
    ps.cursor = 0;
    emitAt(ps, nullptr, vec2(0, 0));
    EXPECT_EQ(ps.defaultSlice->count, 1u);
}

TEST_F(ParticleSystemTest, DeletingTheSystemEmptiesTheSlicesItFed) {
    ParticleSystem* ps = new ParticleSystem(4);
    ParticleSlice* s = ps->createSlice(false, false);
    emitAt(*ps, s, vec2(0, 0));
    delete ps;
    EXPECT_EQ(s->count, 0u);
    EXPECT_EQ(s->head, nullptr);
    EXPECT_EQ(s->tail, nullptr);
    delete s;
}
