// The segment hit test on the wrapping world, against hand-computed cases: the broad phase over
// nine copies, the single and several candidate paths, equal keys and a crowded segment.

#include <cmath>

#include "game/EnemyPlasma.h"
#include "game/Plasma.h"
#include "game/Weapon.h"
#include "tests/support/GameSession.h"

using namespace testing_support;
using orvel::vec2;

namespace {

class FindHitTest : public SessionTest {
protected:
    // `h` names `actor` hit at (x, y).
    static void expectHit(const hit_struct& h, const Actor* actor, float x, float y) {
        EXPECT_EQ(h.actor, actor);
        EXPECT_FLOAT_EQ(h.point.x, x);
        EXPECT_FLOAT_EQ(h.point.y, y);
    }

    void SetUp() override {
        SessionTest::SetUp();
        weapon = keep(new Plasma());
    }
    Plasma* weapon = nullptr;
};

// One case of the table: enemy at `enemy` with radius 10, segment from -> to, expected entry.
struct WrapCase {
    vec2 enemy, from, to, point;
};

} // namespace

TEST_F(FindHitTest, EmptyTargetListGivesNoHit) {
    hit_struct h = weapon->findHit(vec2(0, 0), vec2(100, 100), 16.0f);
    EXPECT_EQ(h.actor, nullptr);
    EXPECT_EQ(h.point.x, 0.0f);
    EXPECT_EQ(h.point.y, 0.0f);
}

TEST_F(FindHitTest, SingleCandidateOnTheLineReturnsTheEntryPoint) {
    Enemy* e = addEnemy<Enemy>(500, 100, 20);
    hit_struct h = weapon->findHit(vec2(100, 100), vec2(1000, 100), 16.0f);
    expectHit(h, e, 480.0f, 100.0f);
}

TEST_F(FindHitTest, TheRadiusArgumentIsIgnored) {
    addEnemy<Enemy>(500, 150, 20);
    // 50 units off the segment: a miss for the enemy's radius 20 whatever the argument says.
    hit_struct h = weapon->findHit(vec2(100, 100), vec2(1000, 100), 1000.0f);
    EXPECT_EQ(h.actor, nullptr);
}

TEST_F(FindHitTest, CircleJustTouchingTheBoxIsNoCandidate) {
    // Squared distance 400 to the box equals the radius squared: not less, so no candidate.
    addEnemy<Enemy>(500, 120, 20);
    EXPECT_EQ(weapon->findHit(vec2(100, 100), vec2(1000, 100), 0).actor, nullptr);
}

TEST_F(FindHitTest, EachOfTheEightWrappedCopiesIsFound) {
    const float W = WORLD;
    // Enemy at (1000, 1000), radius 10; the segment runs 100 units along x through the copy,
    // so the ray enters 10 units before it.
    const vec2 shifts[8] = {vec2(W, 0),  vec2(-W, 0), vec2(0, W),  vec2(0, -W),
                            vec2(W, W),  vec2(W, -W), vec2(-W, W), vec2(-W, -W)};
    for (const vec2& s : shifts) {
        g_game->enemies.clear();
        Enemy* e = addEnemy<Enemy>(1000, 1000, 10);
        const vec2 copy(1000 + s.x, 1000 + s.y);
        hit_struct h = weapon->findHit(vec2(copy.x - 50, copy.y), vec2(copy.x + 50, copy.y), 0);
        EXPECT_EQ(h.actor, e) << "shift " << s.x << ", " << s.y;
        EXPECT_FLOAT_EQ(h.point.x, copy.x - 10) << "shift " << s.x << ", " << s.y;
        EXPECT_FLOAT_EQ(h.point.y, copy.y) << "shift " << s.x << ", " << s.y;
        delete e;
    }
}

TEST_F(FindHitTest, EnemyAcrossTheWrapEdgeIsHitOnTheShotsSide) {
    // The enemy sits at x = 5, the shot flies from x = 4090 to 4110: its copy at 4101 is hit,
    // and the ray enters at 4101 - 10 = 4091, inside the world on the shot's side.
    const WrapCase cases[] = {
        {vec2(5, 2000), vec2(4090, 2000), vec2(4110, 2000), vec2(4091, 2000)},
        {vec2(4091, 2000), vec2(6, 2000), vec2(-14, 2000), vec2(5, 2000)},
        {vec2(2000, 5), vec2(2000, 4090), vec2(2000, 4110), vec2(2000, 4091)},
        {vec2(2000, 4091), vec2(2000, 6), vec2(2000, -14), vec2(2000, 5)},
    };
    for (const WrapCase& c : cases) {
        g_game->enemies.clear();
        Enemy* e = addEnemy<Enemy>(c.enemy.x, c.enemy.y, 10);
        hit_struct h = weapon->findHit(c.from, c.to, 0);
        expectHit(h, e, c.point.x, c.point.y);
        delete e;
    }
}

TEST_F(FindHitTest, NearerOfTwoEnemiesWinsWhateverTheListOrder) {
    addEnemy<Enemy>(800, 100, 20);
    Enemy* nearer = addEnemy<Enemy>(400, 100, 20);
    hit_struct h = weapon->findHit(vec2(100, 100), vec2(1000, 100), 0);
    expectHit(h, nearer, 380.0f, 100.0f);
}

TEST_F(FindHitTest, NearerWrappedCopyWinsOverAFartherPlainPosition) {
    // The second enemy's plain position 4150 is off the segment; its copy at 4150 - 4096 = 54
    // is on it, with key 54^2 against 800^2 for the first enemy at 900. Entry at 54 - 20.
    addEnemy<Enemy>(900, 100, 20);
    Enemy* wrapped = addEnemy<Enemy>(4150, 100, 20);
    hit_struct h = weapon->findHit(vec2(0, 100), vec2(1000, 100), 0);
    expectHit(h, wrapped, 34.0f, 100.0f);
}

TEST_F(FindHitTest, EqualKeysKeepListOrder) {
    // Both centres are 10 off the line at x = 500: keys 400^2 + 10^2 each. The ray enters the
    // circle at x = 500 - sqrt(20^2 - 10^2).
    const float entry = 500.0f - std::sqrt(300.0f);
    Enemy* above = addEnemy<Enemy>(500, 110, 20);
    Enemy* below = addEnemy<Enemy>(500, 90, 20);
    hit_struct h = weapon->findHit(vec2(100, 100), vec2(1000, 100), 0);
    EXPECT_EQ(h.actor, above);
    EXPECT_NEAR(h.point.x, entry, 1e-3);
    EXPECT_FLOAT_EQ(h.point.y, 100.0f);

    g_game->enemies.clear();
    g_game->enemies.push(below);
    g_game->enemies.push(above);
    h = weapon->findHit(vec2(100, 100), vec2(1000, 100), 0);
    EXPECT_EQ(h.actor, below);
    EXPECT_NEAR(h.point.x, entry, 1e-3);
}

TEST_F(FindHitTest, BoxOnlyCandidateIsSkippedForTheNextOne) {
    // Segment along y = x from (100, 100) to (1000, 1000). (900, 150) lies inside the box but
    // 750 / sqrt(2) = 530 off the line; key 800^2 + 50^2 = 642500. (700, 700) is on the line,
    // key 720000, so it comes second in the sorted list and is the one returned.
    addEnemy<Enemy>(900, 150, 30);
    Enemy* onLine = addEnemy<Enemy>(700, 700, 30);
    hit_struct h = weapon->findHit(vec2(100, 100), vec2(1000, 1000), 0);
    EXPECT_EQ(h.actor, onLine);
    const float entry = 700.0f - 30.0f / std::sqrt(2.0f);
    EXPECT_NEAR(h.point.x, entry, 1e-3);
    EXPECT_NEAR(h.point.y, entry, 1e-3);
}

TEST_F(FindHitTest, BoxOnlyCandidateAloneGivesNoHit) {
    addEnemy<Enemy>(900, 150, 30);
    EXPECT_EQ(weapon->findHit(vec2(100, 100), vec2(1000, 1000), 0).actor, nullptr);
}

TEST_F(FindHitTest, SeveralBoxOnlyCandidatesGiveNoHit) {
    addEnemy<Enemy>(900, 150, 30);
    addEnemy<Enemy>(150, 900, 30);
    EXPECT_EQ(weapon->findHit(vec2(100, 100), vec2(1000, 1000), 0).actor, nullptr);
}

TEST_F(FindHitTest, MoreThanSixtyFourCandidatesOnOneSegment) {
    // 70 enemies at x = 3550, 3500, ..., 100 in list order; the last one is the nearest to
    // x = 0 and its circle starts at 90. Run twice: the scratch stacks keep their grown room.
    Enemy* nearest = nullptr;
    for (int i = 69; i >= 0; --i) nearest = addEnemy<Enemy>(100.0f + 50.0f * i, 100, 10);
    for (int run = 0; run < 2; ++run) {
        hit_struct h = weapon->findHit(vec2(0, 100), vec2(4000, 100), 0);
        expectHit(h, nearest, 90.0f, 100.0f);
    }
}

TEST_F(FindHitTest, EnemyWeaponsHitFriendsNotEnemies) {
    EnemyPlasma* enemyGun = keep(new EnemyPlasma());
    addEnemy<Enemy>(500, 100, 20);
    EXPECT_EQ(enemyGun->findHit(vec2(100, 100), vec2(1000, 100), 0).actor, nullptr);

    DummyFriend* f = new DummyFriend();
    f->position = vec2(600, 100);
    f->radius = 25;
    g_game->friends.push(f);
    hit_struct h = enemyGun->findHit(vec2(100, 100), vec2(1000, 100), 0);
    EXPECT_EQ(h.actor, f);
    EXPECT_FLOAT_EQ(h.point.x, 575.0f);
    // The player's weapon still sees the enemy, not the friend.
    EXPECT_EQ(weapon->findHit(vec2(100, 100), vec2(1000, 100), 0).point.x, 480.0f);
}
