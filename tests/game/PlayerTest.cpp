// The ship: construction, thrust and energy, braking, both weapons from one pool, limits,
// looks, damage with the grow-in, death, the respawn flight and the end of the lives.

#include <cmath>
#include <type_traits>
#include <string>
#include <vector>

#include <SDL/SDL_keysym.h>

#include "engine/Math.h"
#include "game/GrappleEffect.h"
#include "game/Laser.h"
#include "game/Plasma.h"
#include "game/Player.h"
#include "game/TextIndicator.h"
#include "scene/Group.h"
#include "scene/ParticleEmitter.h"
#include "scene/ParticleSlice.h"
#include "scene/ParticleSystem.h"
#include "scene/Sprite.h"
#include "scene/Text.h"
#include "tests/support/AllocationCounter.h"
#include "tests/support/GameSession.h"

using namespace testing_support;
using orvel::Orvel;
using orvel::vec2;

namespace {

class PlayerTest : public SessionTest {
protected:
    void SetUp() override {
        SessionTest::SetUp();
        g_game->init();
        player = g_game->player;
        // init places the ship at the world's centre.
        ASSERT_EQ(player->position.x, 2048.0f);
    }

    // One player update at `ms` with the given input.
    void frame(uint32_t ms, uint32_t buttons = 0, int key = -1, int key2 = -1) {
        setTime(ms);
        setInput(buttons, 640, 360, key, key2);
        player->update();
    }

    static bool listed(const orvel::Stack<Friend*>& list, Friend* f) {
        for (unsigned i = 0; i < list.count; ++i)
            if (list.data[i] == f) return true;
        return false;
    }
    static bool listed(const orvel::Stack<Actor*>& list, Actor* a) {
        for (unsigned i = 0; i < list.count; ++i)
            if (list.data[i] == a) return true;
        return false;
    }
    // The strings of the floating texts on the actors list, in list order.
    static std::vector<std::string> banners() {
        std::vector<std::string> out;
        for (unsigned i = 0; i < g_game->actors.count; ++i) {
            TextIndicator* t = dynamic_cast<TextIndicator*>(g_game->actors.data[i]);
            if (t) out.push_back(t->text->text.getCString());
        }
        return out;
    }

    Player* player = nullptr;
};

} // namespace

TEST_F(PlayerTest, ConstructionNumbersAndWiring) {
    EXPECT_EQ(player->hull, 125.0f);
    EXPECT_EQ(player->maxHull, 100.0f);
    EXPECT_EQ(player->pickupRadius, 150.0f);
    EXPECT_EQ(player->radius, 32.0f);
    EXPECT_EQ(player->energy, 350.0f);
    EXPECT_EQ(player->maxEnergy, 350.0f);
    EXPECT_EQ(player->energyRegen, 35.0f);
    EXPECT_EQ(player->thrustCost, 25.0f);
    EXPECT_NEAR(player->maxLead, 707.1068f, 1e-3);
    EXPECT_EQ(player->laser->color.r, 76);
    EXPECT_EQ(player->laser->color.g, 76);
    EXPECT_EQ(player->laser->color.b, 255);
    EXPECT_EQ(player->laser->color.a, 224);
    EXPECT_EQ(player->bottomGlow->blendColor.a, 107);
    EXPECT_EQ(player->bottomGlow->getDrawMode(), (unsigned)BlendAdd);
    EXPECT_EQ(player->topGlow->getDrawMode(), (unsigned)BlendAdd);
    EXPECT_EQ(player->drawable, player->group);
    Drawable* d = player->group->first;
    const Drawable* order[5] = {player->bottomSprite, player->bottomGlow, player->middleSprite,
                                player->topSprite, player->topGlow};
    for (const Drawable* expected : order) {
        ASSERT_EQ(d, expected);
        d = d->next;
    }
    EXPECT_EQ(player->bottomSprite->size.x, 64.0f);
    EXPECT_EQ(player->bottomGlow->size.x, 60.0f);
    EXPECT_EQ(player->topGlow->size.x, 72.0f);
    EXPECT_EQ(player->trail->capacity, 256u);
    EXPECT_EQ(player->trailEmitter->lifeMin, 200.0f);
    EXPECT_EQ(player->trailEmitter->lifeMax, 500.0f);
    EXPECT_EQ(player->trailEmitter->sizeStartMax, 48.0f);
    EXPECT_EQ(player->trailEmitter->spread, 50.0f);
    EXPECT_EQ(player->energyText->fontSize, 15.0f);
    EXPECT_EQ(player->energyText->position.x, 5.0f);
    EXPECT_EQ(player->energyText->position.y, 25.0f);
}

TEST_F(PlayerTest, FirstShipStartsAliveWithoutBanner) {
    EXPECT_EQ(g_game->lives, 3);
    EXPECT_EQ(player->spawnEnd, 0.0f);
    EXPECT_EQ(player->respawnEnd, 0.0f);
    EXPECT_TRUE(banners().empty());
    frame(START);
    EXPECT_EQ(player->scale, 1.0f);
}

TEST_F(PlayerTest, EnergyTextShowsTheIntegerPart) {
    player->energy = 100.0f;
    frame(START);
    // 100 + 35 / 60 = 100.58.
    EXPECT_STREQ(player->energyText->text.getCString(), "Energy: 100");
}

TEST_F(PlayerTest, ThrustAddsPushAndCostsEnergy) {
    frame(START, 0, SDLK_w, SDLK_d);
    const float a = 500.0f / 60.0f;
    EXPECT_FLOAT_EQ(player->velocity.x, a);
    EXPECT_FLOAT_EQ(player->velocity.y, -a);
    // Regeneration is clamped at 350 first, then one frame of thrust.
    EXPECT_FLOAT_EQ(player->energy, 350.0f - 25.0f / 60.0f);
    EXPECT_EQ(player->trailEmitter->rate, 100u);
    EXPECT_FLOAT_EQ(player->trailEmitter->direction.x, -a);
    EXPECT_FLOAT_EQ(player->trailEmitter->direction.y, a);
}

TEST_F(PlayerTest, OppositeKeysCancel) {
    frame(START, 0, SDLK_a, SDLK_d);
    EXPECT_EQ(player->velocity.x, 0.0f);
    EXPECT_EQ(player->energy, 350.0f);
    EXPECT_EQ(player->trailEmitter->rate, 0u);
}

TEST_F(PlayerTest, TooLittleEnergyGivesAProportionalPushAndLeavesZero) {
    player->energy = 0.0f;
    player->thrustCost = 100.0f;
    frame(START, 0, SDLK_d);
    const float regen = 35.0f / 60.0f;
    const float cost = 100.0f / 60.0f;
    const float push = (500.0f / 60.0f) * (regen / cost);
    EXPECT_NEAR(player->velocity.x, push, 1e-5);
    EXPECT_NEAR(push, 2.9166667f, 1e-5);
    EXPECT_EQ(player->velocity.y, 0.0f);
    EXPECT_EQ(player->energy, 0.0f);
}

TEST_F(PlayerTest, ExactlySpentEnergyGivesNoPush) {
    Orvel::sync = 0.25f;
    player->energyRegen = 0.0f;
    // 25 x 0.25 = 6.25 exactly.
    player->energy = 6.25f;
    frame(START, 0, SDLK_d);
    EXPECT_EQ(player->energy, 0.0f);
    EXPECT_EQ(player->velocity.x, 0.0f);
    EXPECT_EQ(player->velocity.y, 0.0f);
}

TEST_F(PlayerTest, ReleasedKeysBrakeAt300PerSecondPerAxisNeverPastZero) {
    Orvel::sync = 0.25f;
    player->velocity = vec2(100, -100);
    frame(START);
    EXPECT_FLOAT_EQ(player->velocity.x, 25.0f);
    EXPECT_FLOAT_EQ(player->velocity.y, -25.0f);
    frame(START + 250);
    EXPECT_EQ(player->velocity.x, 0.0f);
    EXPECT_EQ(player->velocity.y, 0.0f);
}

TEST_F(PlayerTest, BrakingOnlyOnTheAxisWithoutInput) {
    Orvel::sync = 0.25f;
    player->velocity = vec2(100, 0);
    frame(START, 0, SDLK_w);
    EXPECT_FLOAT_EQ(player->velocity.x, 25.0f);
    EXPECT_FLOAT_EQ(player->velocity.y, -125.0f);
}

TEST_F(PlayerTest, BothWeaponsDrawOnOnePool) {
    frame(START, LEFT_BUTTON | RIGHT_BUTTON);
    EXPECT_FLOAT_EQ(player->energy, 350.0f - 2.0f - 8.0f);
    EXPECT_EQ(player->plasma->ring.shots[0].finish, START + 1500);
    // Fired from the ship and moved once by the plasma's own update in the same frame.
    const Plasma::Shot& shot = player->plasma->ring.shots[0];
    EXPECT_NEAR(shot.position.x, 2048.0f + shot.velocity.x / 60.0f, 1e-3);
    EXPECT_NEAR(shot.position.y, 2048.0f + shot.velocity.y / 60.0f, 1e-3);
    EXPECT_EQ(player->laser->beams[0].start, (float)START);
    // 16 ms later both gates are closed: only regeneration.
    frame(START + 16, LEFT_BUTTON | RIGHT_BUTTON);
    EXPECT_FLOAT_EQ(player->energy, 340.0f + 35.0f / 60.0f);
}

TEST_F(PlayerTest, WeaponFiresOnlyWhileEnergyExceedsItsCost) {
    player->energyRegen = 0.0f;
    player->energy = 2.0f;
    frame(START, LEFT_BUTTON);
    EXPECT_EQ(player->energy, 2.0f);
    EXPECT_EQ(player->plasma->lastShot, 0.0f);
    player->energy = 8.0f;
    frame(START + 16, LEFT_BUTTON | RIGHT_BUTTON);
    // Plasma fires (8 > 2), leaving 6, which is not above the laser's 8.
    EXPECT_EQ(player->energy, 6.0f);
    EXPECT_EQ(player->laser->lastShot, 0.0f);
}

TEST_F(PlayerTest, PlasmaAimsAtTheMouseInWorldCoordinates) {
    // The camera follows the ship only in Game::update; here the default camera at (640, 360)
    // maps the mouse pixel (640, 360) to the same world point.
    setTime(START);
    setInput(LEFT_BUTTON, 640, 360);
    player->position = vec2(640, 660);
    player->update();
    EXPECT_FLOAT_EQ(player->plasma->ring.shots[0].velocity.x, 0.0f);
    EXPECT_FLOAT_EQ(player->plasma->ring.shots[0].velocity.y, -750.0f);
}

TEST_F(PlayerTest, SpeedIsLimitedTo350) {
    player->velocity = vec2(400, 300);
    frame(START, 0, SDLK_d, SDLK_s);
    const float a = 500.0f / 60.0f;
    const float vx = 400.0f + a;
    const float vy = 300.0f + a;
    const float len = std::sqrt(vx * vx + vy * vy);
    EXPECT_NEAR(player->velocity.x, vx / len * 350.0f, 1e-3);
    EXPECT_NEAR(player->velocity.y, vy / len * 350.0f, 1e-3);
}

TEST_F(PlayerTest, CameraLeadGrowsWithMomentumAndDecays) {
    player->velocity = vec2(350, 0);
    frame(START, 0, SDLK_d);
    // Limited back to 350, then lead += 350 x (1/350) x 350 / 60, then x (1 - |lead|/maxLead/60).
    const float lead = 350.0f / 60.0f;
    const float expected = lead * (1.0f - (lead / 707.1068f) / 60.0f);
    EXPECT_NEAR(player->cameraLead.x, expected, 1e-4);
    EXPECT_EQ(player->cameraLead.y, 0.0f);
    EXPECT_NEAR(player->position.x, 2048.0f + 350.0f / 60.0f, 1e-3);
}

TEST_F(PlayerTest, GlowPulseDimmedBySpentEnergy) {
    player->energyRegen = 0.0f;
    player->energy = 175.0f;
    frame(START);
    const int top = (int)(0.5f * ((std::sin(START * 0.005f) * 0.1f + 0.9f) * 255.0f));
    EXPECT_EQ(player->topGlow->blendColor.a, top);
    EXPECT_EQ(player->bottomGlow->blendColor.a, top - 100 > 0 ? top - 100 : 0);
}

TEST_F(PlayerTest, SpritesSpin) {
    Orvel::sync = 0.1f;
    frame(START);
    EXPECT_FLOAT_EQ(player->bottomSprite->rotation.z, 360.0f - 16.5f);
    EXPECT_FLOAT_EQ(player->bottomGlow->rotation.z, 360.0f - 16.5f);
    EXPECT_FLOAT_EQ(player->middleSprite->rotation.z, 2.0f);
}

TEST_F(PlayerTest, HitDuringGrowInDoesNoDamage) {
    player->spawnStart = (float)START;
    player->spawnEnd = (float)(START + 1000);
    setTime(START + 999);
    EXPECT_TRUE(player->damage(500.0f));
    EXPECT_EQ(player->hull, 125.0f);
}

TEST_F(PlayerTest, NonLethalHitTakesHull) {
    EXPECT_TRUE(player->damage(25.0f));
    EXPECT_EQ(player->hull, 100.0f);
}

TEST_F(PlayerTest, LethalHitDestroysAndStartsTheWait) {
    player->hull = 10.0f;
    player->velocity = vec2(100, 50);
    EXPECT_FALSE(player->damage(10.0f));
    EXPECT_EQ(player->hull, 0.0f);
    EXPECT_EQ(player->scale, 0.0f);
    EXPECT_EQ(player->velocity.x, 0.0f);
    EXPECT_EQ(player->respawnStart, (float)(START + 2500));
    EXPECT_EQ(player->respawnEnd, (float)(START + 6000));
    EXPECT_EQ(player->deathPosition.x, 2048.0f);
    EXPECT_NEAR(player->respawnPosition.length(), 1920.0f, 1e-2);
    EXPECT_FALSE(listed(g_game->friends, player));
    EXPECT_TRUE(listed(g_game->actors, player));
    // Blue burst of 256 and fire burst of 512 in the explosion slice, which is in the world.
    EXPECT_EQ(g_game->explosionSlice->count, 768u);
    EXPECT_EQ(g_game->explosionSlice->parent, (Container*)g_world);
}

TEST_F(PlayerTest, FullLifeCycleEndsTheGameOnTheFourthDeath) {
    uint32_t t = START;
    const char* expectedBanners[3] = {"2 lives left", "1 lives left", "0 lives left"};
    for (int life = 0; life < 3; ++life) {
        setTime(t);
        player->position = vec2(1000, 1000);
        ASSERT_FALSE(player->damage(1000.0f));
        const vec2 back = player->respawnPosition;

        // Waiting: the ship stays where it died.
        frame(t + 2499);
        EXPECT_EQ(player->position.x, 1000.0f);
        EXPECT_EQ(player->position.y, 1000.0f);

        // Halfway through the 3.5 s flight the sine ease is at one half.
        frame(t + 2500 + 1750);
        const float hx = orvel::Math::wrapf((1000.0f + back.x) * 0.5f, 0.0f, WORLD);
        const float hy = orvel::Math::wrapf((1000.0f + back.y) * 0.5f, 0.0f, WORLD);
        EXPECT_NEAR(player->position.x, hx, 1e-2);
        EXPECT_NEAR(player->position.y, hy, 1e-2);
        EXPECT_FALSE(listed(g_game->friends, player));

        // Flight over: respawn with grow-in and a banner.
        frame(t + 6000);
        EXPECT_NEAR(player->position.x, orvel::Math::wrapf(back.x, 0.0f, WORLD), 1e-2);
        EXPECT_NEAR(player->position.y, orvel::Math::wrapf(back.y, 0.0f, WORLD), 1e-2);
        EXPECT_EQ(g_game->lives, 2 - life);
        EXPECT_EQ(player->hull, 125.0f);
        EXPECT_EQ(player->scale, 0.0f);
        EXPECT_EQ(player->spawnStart, (float)(t + 6000));
        EXPECT_EQ(player->spawnEnd, (float)(t + 7000));
        EXPECT_EQ(player->respawnStart, 0.0f);
        EXPECT_EQ(player->respawnEnd, 0.0f);
        EXPECT_TRUE(listed(g_game->friends, player));
        const std::vector<std::string> shown = banners();
        ASSERT_EQ(shown.size(), (size_t)life + 1);
        EXPECT_EQ(shown.back(), expectedBanners[life]);

        // Growing in: half size and invulnerable halfway.
        frame(t + 6500);
        EXPECT_FLOAT_EQ(player->scale, 0.5f);
        EXPECT_TRUE(player->damage(1000.0f));
        EXPECT_EQ(player->hull, 125.0f);

        // Grown: full size, in control.
        frame(t + 7000);
        EXPECT_EQ(player->scale, 1.0f);
        EXPECT_EQ(player->spawnEnd, 0.0f);
        t += 10000;
    }

    // The fourth death with no lives left removes the ship for good.
    setTime(t);
    ASSERT_FALSE(player->damage(1000.0f));
    EXPECT_EQ(player->respawnEnd, 0.0f);
    EXPECT_FALSE(listed(g_game->friends, player));
    EXPECT_FALSE(listed(g_game->actors, player));
    EXPECT_EQ(player->group->parent, nullptr);
    EXPECT_TRUE(g_game->running);
    g_game->update();
    EXPECT_FALSE(g_game->running);
}

TEST_F(PlayerTest, SteadyFlightAndFireAllocateNothing) {
    // A target halfway along the line of fire from (2048, 2048) to the mouse's world point
    // (640, 360) keeps the hit test and the sparks busy; the ship is held in place.
    DummyEnemy* e = addDummyInWorld(1344, 1204, 60);
    uint32_t t = START;
    for (int i = 0; i < 120; ++i, t += 16) {
        player->position = vec2(2048, 2048);
        frame(t, LEFT_BUTTON | RIGHT_BUTTON, SDLK_w, SDLK_d);
        g_game->particles->update();
    }
    const int hitsBefore = e->hits;
    const std::size_t before = testing_support::allocationCount();
    for (int i = 0; i < 60; ++i, t += 16) {
        player->position = vec2(2048, 2048);
        frame(t, LEFT_BUTTON | RIGHT_BUTTON, SDLK_w, SDLK_d);
        g_game->particles->update();
    }
    EXPECT_EQ(testing_support::allocationCount(), before);
    EXPECT_GT(e->hits, hitsBefore);
}

TEST_F(PlayerTest, EnergyOverScriptedFramesWithThrustAndBothWeapons) {
    const float regen = 35.0f / 60.0f;
    const float thrust = 25.0f / 60.0f;
    const uint32_t buttons = LEFT_BUTTON | RIGHT_BUTTON;
    // Frame 1: regeneration clamps at 350, then thrust, plasma (2) and laser (8).
    frame(START, buttons, SDLK_w);
    float expected = 350.0f - thrust - 2.0f - 8.0f;
    EXPECT_FLOAT_EQ(player->energy, expected);
    // 16 ms: both gates closed.
    frame(START + 16, buttons, SDLK_w);
    expected = expected + regen - thrust;
    EXPECT_FLOAT_EQ(player->energy, expected);
    // 200 ms: the plasma's 1000 / 5 has passed, the laser's 1000 / 4 has not.
    frame(START + 200, buttons, SDLK_w);
    expected = expected + regen - thrust - 2.0f;
    EXPECT_FLOAT_EQ(player->energy, expected);
    // 250 ms: the laser again; the plasma waits until 400.
    frame(START + 250, buttons, SDLK_w);
    expected = expected + regen - thrust - 8.0f;
    EXPECT_FLOAT_EQ(player->energy, expected);
    // Released: regeneration only.
    frame(START + 266);
    expected = expected + regen;
    EXPECT_FLOAT_EQ(player->energy, expected);
}

TEST_F(PlayerTest, RegenerationStopsAtTheMaximum) {
    player->energy = 349.9f;
    frame(START);
    EXPECT_EQ(player->energy, 350.0f);
}

TEST(Friend, BaseDefaultsAndAlwaysSurvives) {
    Friend f;
    EXPECT_EQ(f.pickupRadius, 75.0f);
    EXPECT_EQ(f.hull, 100.0f);
    EXPECT_EQ(f.maxHull, 100.0f);
    EXPECT_EQ(f.shield, 0.0f);
    EXPECT_EQ(f.maxShield, 0.0f);
    EXPECT_EQ(f.radius, 0.0f);
    EXPECT_EQ(f.scale, 1.0f);
    EXPECT_TRUE(f.damage(1000.0f));
    EXPECT_EQ(f.hull, 100.0f);
}

TEST(GrappleEffect, IsAbstract) { EXPECT_TRUE(std::is_abstract<GrappleEffect>::value); }
