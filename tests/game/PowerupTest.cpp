// Powerups: the kind drawn from two random numbers, drift, animation, the pull into a friend,
// the seven effects and their green messages.

#include <string>

#include "game/Player.h"
#include "game/Powerup.h"
#include "game/ScoreCounter.h"
#include "game/TextIndicator.h"
#include "scene/Group.h"
#include "scene/Sprite.h"
#include "scene/Text.h"
#include "tests/support/GameSession.h"

using namespace testing_support;
using orvel::Orvel;
using orvel::vec2;

namespace {

class PowerupTest : public SessionTest {
protected:
    void SetUp() override {
        SessionTest::SetUp();
        g_game->init();
        player = g_game->player;
    }

    // A powerup placed and listed the way an enemy drops one.
    static Powerup* drop(float x, float y) {
        Powerup* p = new Powerup();
        p->position = vec2(x, y);
        p->velocity = vec2(0, 0);
        g_world->add(p->drawable);
        g_game->powerups.push(p);
        g_game->actors.push(p);
        return p;
    }

    // The kind a new powerup draws when the integer draws are r and then q.
    static int kindFor(int r, int q) {
        plantFloats({0.5f, 0.5f});
        plantInts({r, q});
        Powerup p;
        return p.kind;
    }

    // The newest floating text on the actors list, or null.
    static TextIndicator* lastMessage() {
        for (unsigned i = g_game->actors.count; i-- > 0;) {
            TextIndicator* t = dynamic_cast<TextIndicator*>(g_game->actors.data[i]);
            if (t) return t;
        }
        return nullptr;
    }

    // Collects a powerup of `kind` at (300, 400) and returns its message. The effect's integer
    // draws are `ints`, planted once the powerup has made its own draws.
    static std::string collectKind(int kind, std::initializer_list<int> ints = {}) {
        Powerup* p = drop(300, 400);
        p->kind = kind;
        plantInts(ints);
        p->collect();
        TextIndicator* t = lastMessage();
        return t ? t->text->text.getCString() : "";
    }

    Player* player = nullptr;
};

} // namespace

TEST_F(PowerupTest, KindBoundaries) {
    EXPECT_EQ(kindFor(0, 0), 0);
    EXPECT_EQ(kindFor(89, 0), 0);
    EXPECT_EQ(kindFor(90, 0), 1);
    EXPECT_EQ(kindFor(99, 29), 1);
    EXPECT_EQ(kindFor(90, 30), 2);
    EXPECT_EQ(kindFor(90, 59), 2);
    EXPECT_EQ(kindFor(90, 60), 3);
    EXPECT_EQ(kindFor(90, 69), 3);
    EXPECT_EQ(kindFor(90, 70), 4);
    EXPECT_EQ(kindFor(90, 79), 4);
    EXPECT_EQ(kindFor(90, 80), 5);
    EXPECT_EQ(kindFor(90, 99), 5);
    EXPECT_EQ(kindFor(90, 100), 6);
    EXPECT_EQ(kindFor(90, 109), 6);
    // Draws are taken modulo the range: 190 is 90, 110 + 100 is 100.
    EXPECT_EQ(kindFor(190, 210), 6);
}

TEST_F(PowerupTest, VelocityComesFromTheTwoFirstDrawsSwapped) {
    plantFloats({0.0f, 1.0f});
    plantInts({0});
    Powerup p;
    // First draw -75 goes to y, second draw 75 to x.
    EXPECT_EQ(p.velocity.x, 75.0f);
    EXPECT_EQ(p.velocity.y, -75.0f);
    EXPECT_EQ(p.kind, 0);
}

TEST_F(PowerupTest, ConstructionNodes) {
    Powerup p;
    EXPECT_EQ(p.drawable, p.group);
    EXPECT_EQ(p.group->first, p.sprite);
    EXPECT_EQ(p.sprite->next, p.glow);
    EXPECT_TRUE(p.sprite->animated);
    EXPECT_EQ(p.sprite->framesX, 16);
    EXPECT_EQ(p.glow->framesY, 16);
    EXPECT_EQ(p.sprite->size.x, 48.0f);
    EXPECT_EQ(p.glow->getDrawMode(), (unsigned)BlendAdd);
    EXPECT_EQ(p.animSpeed, 25.0f);
    EXPECT_FALSE(p.collecting);
}

TEST_F(PowerupTest, DriftsAndSlowsDown) {
    Orvel::sync = 0.25f;
    Powerup* p = drop(500, 500);
    p->velocity = vec2(75, -75);
    p->update();
    EXPECT_FLOAT_EQ(p->position.x, 518.75f);
    EXPECT_FLOAT_EQ(p->position.y, 481.25f);
    // x (1 - 0.2 x 0.25).
    EXPECT_FLOAT_EQ(p->velocity.x, 71.25f);
    EXPECT_FLOAT_EQ(p->velocity.y, -71.25f);
    EXPECT_FALSE(p->collecting);
    // 25 frames per second for 0.25 s.
    EXPECT_EQ(p->sprite->frame, 6);
    EXPECT_EQ(p->glow->frame, 6);
}

TEST_F(PowerupTest, AnimationWrapsAfter256Frames) {
    Orvel::sync = 0.25f;
    Powerup* p = drop(500, 500);
    p->animFrame = 250.0f;
    p->update();
    EXPECT_FLOAT_EQ(p->animFrame, 0.25f);
    EXPECT_EQ(p->sprite->frame, 0);
}

TEST_F(PowerupTest, PullInStaysWithTheFirstCollector) {
    player->position = vec2(1100, 1000);
    player->energy = 10.0f;
    Powerup* p = drop(1000, 1000);
    p->kind = Powerup::ENERGY;
    p->update();
    ASSERT_TRUE(p->collecting);
    EXPECT_EQ(p->collector, player);
    EXPECT_EQ(p->collectStart, (float)START);
    EXPECT_EQ(p->collectEnd, (float)(START + 500));
    EXPECT_EQ(p->collectFrom.x, 1000.0f);

    // A second friend right on the path does not take it over.
    DummyFriend* other = new DummyFriend();
    other->position = vec2(1040, 1000);
    g_game->friends.push(other);
    setTime(START + 250);
    p->update();
    EXPECT_EQ(p->collector, player);
    EXPECT_NEAR(p->position.x, 1050.0f, 1e-3);
    EXPECT_NEAR(p->scale, 0.5f, 1e-6);

    setTime(START + 500);
    p->update();
    // Collected and deleted: off both lists, effect applied, message at the collector.
    EXPECT_EQ(g_game->powerups.count, 0u);
    EXPECT_EQ(player->energy, 350.0f);
    TextIndicator* t = lastMessage();
    ASSERT_NE(t, nullptr);
    EXPECT_STREQ(t->text->text.getCString(), "Energy restored");
    EXPECT_FLOAT_EQ(t->position.x, 1100.0f);
    EXPECT_FLOAT_EQ(t->position.y, 965.0f);
    EXPECT_EQ(t->text->parent, (Container*)g_world);
}

TEST_F(PowerupTest, OutOfRangeOrAcrossTheWrapIsNotCollected) {
    player->position = vec2(4090, 1000);
    // 16 units apart through the wrap, but the pickup test uses the plain distance.
    Powerup* p = drop(10, 1000);
    p->update();
    EXPECT_FALSE(p->collecting);
}

TEST_F(PowerupTest, UpgradeAddsPointsAndShowsTheAmount) {
    // 10 x (1 + 2 mod 4) = 30.
    EXPECT_EQ(collectKind(Powerup::UPGRADE, {2}), "Upgrade +30");
    EXPECT_EQ(g_game->upgradePoints, 30);
    EXPECT_EQ(g_game->weaponCounter->value, 30);
    TextIndicator* t = lastMessage();
    EXPECT_FLOAT_EQ(t->text->color.x, 0.1f);
    EXPECT_FLOAT_EQ(t->text->color.y, 1.0f);
    EXPECT_FLOAT_EQ(t->text->color.z, 0.15f);
    EXPECT_FLOAT_EQ(t->text->color.w, 1.0f);
    EXPECT_EQ(t->text->fontSize, 16.0f);
    EXPECT_FLOAT_EQ(t->position.x, 300.0f);
    EXPECT_FLOAT_EQ(t->position.y, 365.0f);
    EXPECT_EQ(t->startTime, START);
}

TEST_F(PowerupTest, EnergyRestored) {
    player->energy = 12.0f;
    EXPECT_EQ(collectKind(Powerup::ENERGY), "Energy restored");
    EXPECT_EQ(player->energy, 350.0f);
}

TEST_F(PowerupTest, ShieldRestoredWithZeroMaximumLeavesZero) {
    EXPECT_EQ(collectKind(Powerup::SHIELD), "Shield restored");
    EXPECT_EQ(player->shield, 0.0f);
    player->maxShield = 40.0f;
    collectKind(Powerup::SHIELD);
    EXPECT_EQ(player->shield, 40.0f);
}

TEST_F(PowerupTest, ExtraScore) {
    // 100 x (5 + 7 mod 10) = 1200.
    EXPECT_EQ(collectKind(Powerup::EXTRA_SCORE, {7}), "Extra score");
    EXPECT_EQ(g_game->scoreCounter->value, 1200);
}

TEST_F(PowerupTest, HullRestoredToTheMaximumBelowASpawn) {
    player->hull = 50.0f;
    EXPECT_EQ(collectKind(Powerup::HULL), "Hull restored");
    EXPECT_EQ(player->hull, 100.0f);
}

TEST_F(PowerupTest, SpeedBoostChangesNothingElse) {
    player->energy = 200.0f;
    player->velocity = vec2(10, 20);
    EXPECT_EQ(collectKind(Powerup::SPEED_BOOST, {3}), "Speed boost");
    EXPECT_TRUE(player->speedBoost);
    EXPECT_EQ(player->speedBoostStart, (float)START);
    // 1000 x (5 + 3 mod 5).
    EXPECT_EQ(player->speedBoostEnd, (float)(START + 8000));
    EXPECT_EQ(player->energy, 200.0f);
    EXPECT_EQ(player->hull, 125.0f);
    EXPECT_EQ(player->shield, 0.0f);
    EXPECT_EQ(player->velocity.x, 10.0f);
    EXPECT_EQ(player->velocity.y, 20.0f);
    EXPECT_EQ(g_game->upgradePoints, 0);
    EXPECT_EQ(g_game->scoreCounter->value, 0);
    EXPECT_EQ(g_game->shakeEnd, 0.0f);
}

TEST_F(PowerupTest, MegaNukeKillsThroughTheWrapAndFlashesWhite) {
    player->position = vec2(100, 100);
    Enemy* acrossWrap = addEnemy<Enemy>(3596, 100, 30); // 600 away through the wrap
    Enemy* far = addEnemy<Enemy>(1000, 100, 30);         // 900 away
    Enemy* inside = addEnemy<Enemy>(100, 869, 30);       // 769 away
    Enemy* outside = addEnemy<Enemy>(100, 871, 30);      // 771 away
    (void)acrossWrap;
    (void)inside;
    Powerup* p = drop(300, 400);
    p->kind = Powerup::MEGA_NUKE;
    // Radius 720 + 0.5 x 100 = 770, flash 950 + 0.5 x 300 = 1100 ms. Between the two, each of
    // the two destroyed enemies draws its explosion speed and its drop chance (1: no drop).
    plantFloats({0.5f, 0.5f, 1.0f, 0.5f, 1.0f, 0.5f});
    p->collect();
    ASSERT_EQ(g_game->enemies.count, 2u);
    EXPECT_TRUE((g_game->enemies.data[0] == far && g_game->enemies.data[1] == outside) ||
                (g_game->enemies.data[0] == outside && g_game->enemies.data[1] == far));
    EXPECT_EQ(g_fader->color.x, 1.0f);
    EXPECT_EQ(g_fader->color.y, 1.0f);
    EXPECT_EQ(g_fader->color.z, 1.0f);
    EXPECT_EQ(g_fader->color.w, 1.0f);
    EXPECT_EQ(g_fader->from, 1.0f);
    EXPECT_EQ(g_fader->to, 0.0f);
    EXPECT_EQ(g_fader->startTime, START);
    EXPECT_EQ(g_fader->endTime, START + 1100);
    EXPECT_EQ(g_game->shakeEnd, (float)(START + 1100));
    EXPECT_FLOAT_EQ(g_game->shakeMagnitude, 220.0f);
    EXPECT_STREQ(lastMessage()->text->text.getCString(), "Free MegaNuke");
}
