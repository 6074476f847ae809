// The rate gate shared by every weapon.

#include "game/EnemyPlasma.h"
#include "game/Laser.h"
#include "game/Plasma.h"
#include "tests/support/GameSession.h"

using namespace testing_support;
using orvel::vec2;

namespace {

class WeaponTest : public SessionTest {};

} // namespace

TEST_F(WeaponTest, RateZeroNeverFires) {
    Plasma p;
    p.rate = 0.0f;
    for (uint32_t t = START; t < START + 5000; t += 1000) {
        setTime(t);
        EXPECT_EQ(p.shoot(vec2(1, 0)), 0.0f);
    }
    EXPECT_EQ(p.lastShot, 0.0f);
    EXPECT_EQ(p.ring.shots[0].finish, 0u);
}

TEST_F(WeaponTest, RateMinusOneAlwaysFires) {
    Plasma p;
    p.rate = -1.0f;
    EXPECT_EQ(p.shoot(vec2(1, 0)), 2.0f);
    EXPECT_EQ(p.shoot(vec2(1, 0)), 2.0f);
    EXPECT_EQ(p.lastShot, (float)START);
}

TEST_F(WeaponTest, RateFiveAllowsOneShotIn199Ms) {
    Plasma p;
    EXPECT_EQ(p.shoot(vec2(1, 0)), 2.0f);
    setTime(START + 199);
    EXPECT_EQ(p.shoot(vec2(1, 0)), 0.0f);
    EXPECT_EQ(p.lastShot, (float)START);
    // 1000 / 5 = 200 ms after the last allowed shot the gate opens again.
    setTime(START + 200);
    EXPECT_EQ(p.shoot(vec2(1, 0)), 2.0f);
    EXPECT_EQ(p.lastShot, (float)(START + 200));
}

TEST_F(WeaponTest, FirstShotWaitsAFullIntervalFromTimeZero) {
    Plasma p;
    setTime(199);
    EXPECT_EQ(p.shoot(vec2(1, 0)), 0.0f);
    setTime(200);
    EXPECT_EQ(p.shoot(vec2(1, 0)), 2.0f);
}

TEST_F(WeaponTest, ConstructorNumbers) {
    Plasma p;
    EXPECT_EQ(p.enabled, 1);
    EXPECT_EQ(p.damageMin, 5.0f);
    EXPECT_EQ(p.damageMax, 15.0f);
    EXPECT_EQ(p.rate, 5.0f);
    EXPECT_EQ(p.energyCost, 2.0f);
    EXPECT_EQ(p.ring.shotCapacity, 64u);
    EXPECT_EQ(p.ring.slices.count, 64u);
    EXPECT_EQ(p.ring.shotRadius, 16.0f);
    EXPECT_EQ(p.ring.shotSpeed, 750.0f);
    EXPECT_EQ(p.ring.shotLife, 1500);
    EXPECT_EQ(p.ring.overdraw, 3u);
    EXPECT_EQ(p.ring.color.r, 128);
    EXPECT_EQ(p.ring.color.g, 113);
    EXPECT_EQ(p.ring.color.b, 255);
    EXPECT_EQ(p.ring.color.a, 255);

    EnemyPlasma e;
    EXPECT_EQ(e.damageMin, 2.0f);
    EXPECT_EQ(e.damageMax, 7.0f);
    EXPECT_FLOAT_EQ(e.rate, 0.7f);
    EXPECT_EQ(e.energyCost, 1.0f);
    EXPECT_EQ(e.ring.shotCapacity, 16u);
    EXPECT_EQ(e.ring.slices.count, 16u);
    EXPECT_EQ(e.ring.shotRadius, 12.0f);
    EXPECT_EQ(e.ring.color.r, 25);
    EXPECT_EQ(e.ring.color.g, 255);
    EXPECT_EQ(e.ring.color.b, 50);

    Laser l;
    EXPECT_EQ(l.damageMin, 65.0f);
    EXPECT_EQ(l.damageMax, 85.0f);
    EXPECT_EQ(l.rate, 4.0f);
    EXPECT_EQ(l.energyCost, 8.0f);
    EXPECT_EQ(l.emitters.count, 32u);
    EXPECT_EQ(l.slices.count, 32u);
    EXPECT_EQ(l.overdraw, 4u);
    EXPECT_EQ(l.beamWidth, 7.0f);
    EXPECT_EQ(l.beamLife, 650.0f);
    EXPECT_EQ(l.color.r, 76);
    EXPECT_EQ(l.color.a, 224);
}

TEST_F(WeaponTest, EnemyPlasmaGateAtSevenTenthsPerSecond) {
    EnemyPlasma e;
    setTime(START);
    EXPECT_EQ(e.shoot(vec2(0, 1)), 1.0f);
    // 1000 / 0.7 = 1428.57 ms.
    setTime(START + 1428);
    EXPECT_EQ(e.shoot(vec2(0, 1)), 0.0f);
    setTime(START + 1429);
    EXPECT_EQ(e.shoot(vec2(0, 1)), 1.0f);
}
