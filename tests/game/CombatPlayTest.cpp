// A stretch of real play: the session's waves, the ship aiming at the nearest enemy with both
// weapons held, enemies firing back, drawing every few frames.

#include <SDL/SDL_keysym.h>

#include "game/Player.h"
#include "game/ScoreCounter.h"
#include "tests/support/GameSession.h"

using namespace testing_support;
using orvel::vec2;

namespace {

class CombatPlayTest : public SessionTest {
protected:
    CombatPlayTest() { reloadResources = true; }
};

// The enemy nearest to `p` without wrap, or null.
Enemy* nearestEnemy(const vec2& p) {
    Enemy* best = nullptr;
    float bestDistance = 0.0f;
    for (unsigned i = 0; i < g_game->enemies.count; ++i) {
        Enemy* e = g_game->enemies.data[i];
        const float d = (e->position - p).length();
        if (!best || d < bestDistance) {
            best = e;
            bestDistance = d;
        }
    }
    return best;
}

} // namespace

TEST_F(CombatPlayTest, ShipFightsTheFirstWaves) {
    g_world->debugDraw = false;
    g_game->init();
    Player* player = g_game->player;
    uint32_t t = START;
    int enemiesSeen = 0;
    for (int frame = 0; frame < 1500; ++frame, t += 16) {
        setTime(t);
        int mx = 640, my = 360;
        if (g_game->player && g_game->running) {
            Enemy* target = nearestEnemy(player->position);
            if (target) {
                const vec2 s = g_world->worldToScreen(target->position);
                mx = (int)s.x;
                my = (int)s.y;
            }
        }
        enemiesSeen = std::max(enemiesSeen, (int)g_game->enemies.count);
        setInput(LEFT_BUTTON | RIGHT_BUTTON, mx, my, frame % 120 < 60 ? SDLK_w : SDLK_s, SDLK_d);
        g_game->update();
        if (frame % 10 == 0) g_world->draw();
        ASSERT_GE(player->energy, 0.0f);
        ASSERT_LE(player->energy, 350.0f);
    }
    EXPECT_GT(enemiesSeen, 0);
    // Kills pay score.
    EXPECT_GT(g_game->scoreCounter->value, 0);
}
