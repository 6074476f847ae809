// Deterministic play: a fighter across the world's edge from a friend turns to it, closes in,
// fires and circles, frame by frame at 60 frames per second, against a step-by-step model of
// the documented steering written out here.

#include <cmath>

#include "engine/Random.h"
#include "game/EnemyPlasma.h"
#include "game/Friend.h"
#include "scene/Group.h"
#include "tests/support/GameSession.h"

using namespace testing_support;
using orvel::vec2;

namespace {

// The fighter's numbers.
const float MAX_SPEED = 160.0f;
const float SIGHT = 3000.0f;
const float ATTACK = 800.0f;
// The friend, and where the fighter starts with its velocity pointing away from it.
const vec2 FRIEND(100.0f, 2048.0f);
const vec2 START_POSITION(3000.0f, 2048.0f);
const vec2 START_VELOCITY(-100.0f, 60.0f);

// The steering of one enemy toward one friend on the torus, as the rules state it.
struct Model {
    float px, py, vx, vy, tx, ty;
    bool attacked;

    // One frame of `dt` seconds.
    void step(float dt) {
        const float shifts[9][2] = {{0, 0},     {WORLD, 0},      {-WORLD, 0},     {0, WORLD},     {0, -WORLD},
                                    {WORLD, WORLD}, {WORLD, -WORLD}, {-WORLD, WORLD}, {-WORLD, -WORLD}};
        attacked = false;
        for (const auto& s : shifts) {
            const float cx = FRIEND.x + s[0];
            const float cy = FRIEND.y + s[1];
            const float d = std::sqrt((cx - px) * (cx - px) + (cy - py) * (cy - py));
            if (d < SIGHT) {
                tx = cx;
                ty = cy;
                if (d < ATTACK) {
                    attacked = true;
                    break;
                }
            }
        }
        const float dx = tx - px;
        const float dy = ty - py;
        const float dist = std::sqrt(dx * dx + dy * dy);
        float ax = dx / dist * (3.0f * MAX_SPEED);
        float ay = dy / dist * (3.0f * MAX_SPEED);
        if (dist < ATTACK * 0.5f) {
            // Back off by half and turn a quarter: (x, y) -> (-y, x) of (-x / 2, -y / 2).
            const float bx = 0.5f * ay;
            const float by = -0.5f * ax;
            ax = bx;
            ay = by;
            if (dist < ATTACK * 0.25f) ax = ay = 0.0f;
        }
        vx = clamp(vx + ax * dt);
        vy = clamp(vy + ay * dt);
        px = wrap(px + vx * dt);
        py = wrap(py + vy * dt);
    }

    // The distance to the nearest copy of the friend.
    float distanceToFriend() const {
        float best = 1e9f;
        for (int i = -1; i <= 1; ++i) {
            for (int j = -1; j <= 1; ++j) {
                const float dx = FRIEND.x + i * WORLD - px;
                const float dy = FRIEND.y + j * WORLD - py;
                best = std::fmin(best, std::sqrt(dx * dx + dy * dy));
            }
        }
        return best;
    }

    static float clamp(float v) { return v > MAX_SPEED ? MAX_SPEED : (v < -MAX_SPEED ? -MAX_SPEED : v); }
    static float wrap(float v) { return v >= WORLD ? v - WORLD : (v < 0.0f ? v + WORLD : v); }
};

class PlayTest : public SessionTest {};

// ms of the clock at frame k of a 60 Hz run.
uint32_t frameTime(int k) { return START + (uint32_t)(k * 1000 / 60); }

} // namespace

TEST_F(PlayTest, FighterAcrossTheEdgeTurnsClosesInFiresAndCircles) {
    Friend* f = new Friend();
    f->position = FRIEND;
    g_game->friends.push(f);

    Fighter* e = new Fighter();
    g_game->enemies.push(e);
    g_game->actors.push(e);
    g_world->add(e->drawable);
    e->position = START_POSITION;
    e->velocity = START_VELOCITY;

    Model m{START_POSITION.x, START_POSITION.y, START_VELOCITY.x, START_VELOCITY.y, 0, 0, false};
    int firstAttack = -1;
    float firstShotTime = 0.0f;
    float minDistanceLate = 1e9f, maxDistanceLate = 0.0f;

    for (int k = 1; k <= 1200; ++k) {
        step(frameTime(k));
        m.step(FRAME);
        if (m.attacked && firstAttack < 0) {
            firstAttack = k;
            firstShotTime = e->weapon->lastShot;
        }
        if (k == 30) {
            // Turned: the heading now points right, toward the friend's copy at 4196.
            EXPECT_GT(e->velocity.x, 0.0f);
            EXPECT_GT(e->group->rotation.z, 0.0f);
            EXPECT_LT(e->group->rotation.z, 180.0f);
        }
        if (k % 60 == 0) {
            SCOPED_TRACE(k);
            ASSERT_NEAR(e->position.x, m.px, 0.05f);
            ASSERT_NEAR(e->position.y, m.py, 0.05f);
            ASSERT_NEAR(e->velocity.x, m.vx, 0.01f);
            ASSERT_NEAR(e->velocity.y, m.vy, 0.01f);
        }
        if (k > 900) {
            minDistanceLate = std::fmin(minDistanceLate, m.distanceToFriend());
            maxDistanceLate = std::fmax(maxDistanceLate, m.distanceToFriend());
        }
    }

    // It reached attack range and the weapon's gate let the first shot out at that frame.
    ASSERT_GT(firstAttack, 0);
    EXPECT_EQ(firstShotTime, (float)frameTime(firstAttack));
    // Late in the run it stays in range, circling outside the quarter range rather than
    // sitting on the friend.
    EXPECT_LT(maxDistanceLate, ATTACK);
    EXPECT_GT(minDistanceLate, ATTACK * 0.25f);
}
