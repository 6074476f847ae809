// Waves: timing, the banner, the growth of the difficulty and the composition by type.

#include "game/Game.h"

#include <cstring>

#include "game/Player.h"
#include "game/TextIndicator.h"
#include "scene/ParticleSlice.h"
#include "scene/ParticleSystem.h"
#include "scene/Text.h"
#include "tests/support/GameSession.h"

using namespace testing_support;

namespace {

class WaveTest : public SessionTest {
protected:
    void SetUp() override {
        SessionTest::SetUp();
        g_game->init();
    }

    // Runs nextWave up to wave `w`, deleting each wave's enemies before the next one comes,
    // so that only wave w's enemies are listed.
    static void runToWave(int w) {
        while (g_game->wave < w) {
            clearEnemies();
            g_game->nextWave();
        }
    }

    // The difficulty after w waves: x1.1 in double, stored as float, every wave.
    static float difficultyAt(int w) {
        float d = 1.0f;
        for (int i = 0; i < w; ++i) d = (float)((double)d * 1.1);
        return d;
    }

    // The counts of the seven types, in table order.
    struct Counts {
        int fighter, fighter2, hammerhead, probe, probe2, hammerhead2, probe3;
    };
    static void expectCounts(const Counts& c) {
        EXPECT_EQ(countOf<Fighter>(), c.fighter);
        EXPECT_EQ(countOf<Fighter2>(), c.fighter2);
        EXPECT_EQ(countOf<Hammerhead>(), c.hammerhead);
        EXPECT_EQ(countOf<Probe>(), c.probe);
        EXPECT_EQ(countOf<Probe2>(), c.probe2);
        EXPECT_EQ(countOf<Hammerhead2>(), c.hammerhead2);
        EXPECT_EQ(countOf<Probe3>(), c.probe3);
        const int total = c.fighter + c.fighter2 + c.hammerhead + c.probe + c.probe2 + c.hammerhead2 + c.probe3;
        EXPECT_EQ((int)g_game->enemies.count, total);
    }

    // Every listed enemy of type T has the type's numbers scaled by the difficulty.
    template <typename T> static void expectScaled(float hp, float score) {
        const float d = g_game->difficulty;
        for (unsigned i = 0; i < g_game->enemies.count; ++i) {
            T* e = dynamic_cast<T*>(g_game->enemies.data[i]);
            if (!e) continue;
            EXPECT_EQ(e->hitPoints, hp * d);
            EXPECT_EQ(e->score, (int)(score * d));
        }
    }

    // The most recent banner on the actors list.
    static TextIndicator* lastBanner() {
        for (unsigned i = g_game->actors.count; i-- > 0;) {
            TextIndicator* t = dynamic_cast<TextIndicator*>(g_game->actors.data[i]);
            if (t && t->text->parent == static_cast<Container*>(g_hud)) return t;
        }
        return nullptr;
    }
};

// Destroys every enemy from inside the actor loop, as the player's weapons would.
class ExterminatorActor : public Actor {
public:
    void update() override {
        if (!armed) return;
        armed = false;
        while (g_game->enemies.count > 0) g_game->enemies.data[0]->destroy();
    }
    bool armed = true;
};

} // namespace

TEST_F(WaveTest, FirstWaveComesOnlyAfterFiveSeconds) {
    step(START + 4999);
    step(START + 5000);
    EXPECT_EQ(g_game->wave, 0);
    step(START + 5001);
    EXPECT_EQ(g_game->wave, 1);
    EXPECT_EQ(g_game->nextWaveTime, (float)(START + 5001 + 90000));
}

TEST_F(WaveTest, WithEnemiesLeftEachWaveComes90sPlus10msPerPreviousWaveLater) {
    step(START + 5001);
    const uint32_t t1 = START + 5001;
    step(t1 + 90000);
    EXPECT_EQ(g_game->wave, 1);
    step(t1 + 90001);
    EXPECT_EQ(g_game->wave, 2);
    const uint32_t t2 = t1 + 90001;
    EXPECT_EQ(g_game->nextWaveTime, (float)(t2 + 90010));
    step(t2 + 90010);
    EXPECT_EQ(g_game->wave, 2);
    step(t2 + 90011);
    EXPECT_EQ(g_game->wave, 3);
    EXPECT_EQ(g_game->nextWaveTime, (float)(t2 + 90011 + 90020));
}

TEST_F(WaveTest, KillingTheLastEnemyStartsTheNextWaveInTheSameFrame) {
    step(START + 5001);
    ASSERT_EQ(g_game->wave, 1);
    g_game->actors.push(new ExterminatorActor());
    step(START + 5017);
    EXPECT_EQ(g_game->wave, 2);
    EXPECT_EQ(g_game->nextWaveTime, (float)(START + 5017 + 90010));
    EXPECT_GT(g_game->enemies.count, 0u);
}

TEST_F(WaveTest, DeadPlayerWithLivesLeftGetsNoWave) {
    step(START + 5001);
    clearEnemies();
    g_game->player->hull = 0.0f;
    step(START + 5017);
    EXPECT_EQ(g_game->wave, 1);
}

TEST_F(WaveTest, NoWavesAfterGameOver) {
    step(START + 5001);
    g_game->player->hull = 0.0f;
    g_game->lives = 0;
    step(START + 5017);
    ASSERT_FALSE(g_game->running);
    clearEnemies();
    g_game->player->hull = 100.0f;
    step(START + 5033);
    step(START + 500000);
    EXPECT_EQ(g_game->wave, 1);
}

TEST_F(WaveTest, BannerAnnouncesTheWaveOnTheHud) {
    step(START + 5001);
    TextIndicator* banner = lastBanner();
    ASSERT_NE(banner, nullptr);
    EXPECT_STREQ(banner->text->text.getCString(), "Wave 1 incoming");
    EXPECT_EQ(banner->text->font, Resources::font_medium);
    EXPECT_EQ(banner->text->fontSize, 16.0f);
    EXPECT_EQ(banner->startTime, START + 5001);
    EXPECT_EQ(banner->scale, 1.5f);
    EXPECT_EQ(banner->position.x, 640.0f);
    // Made after the actor loop, so it has not risen yet.
    EXPECT_EQ(banner->position.y, 288.0f);
}

TEST_F(WaveTest, EveryWaveMultipliesTheDifficultyBy1Point1) {
    runToWave(1);
    EXPECT_EQ(g_game->difficulty, 1.1f);
    runToWave(5);
    EXPECT_EQ(g_game->difficulty, difficultyAt(5));
}

TEST_F(WaveTest, GrowthFactorsStartAtOneAndGrowBy1Point07And1Point002) {
    runToWave(2);
    EXPECT_EQ(g_game->growthA, (float)((double)(float)1.07 * 1.07));
    EXPECT_EQ(g_game->growthB, (float)((double)(float)1.002 * 1.002));
}

TEST_F(WaveTest, EnemiesOfAWaveAreInTheWorldBelowThePlayerAndItsTrail) {
    runToWave(1);
    for (unsigned i = 0; i < g_game->enemies.count; ++i) {
        EXPECT_EQ(g_game->enemies.data[i]->drawable->parent, static_cast<Container*>(g_world));
    }
    Player* p = g_game->player;
    EXPECT_EQ(g_world->last, p->drawable);
    EXPECT_EQ(p->drawable->prev, static_cast<Drawable*>(p->trail->defaultSlice));
}

TEST_F(WaveTest, Wave1Has13FightersWorth55Each) {
    runToWave(1);
    expectCounts({13, 0, 0, 0, 0, 0, 0});
    for (unsigned i = 0; i < g_game->enemies.count; ++i) {
        EXPECT_EQ(g_game->enemies.data[i]->score, 55);
        EXPECT_EQ(g_game->enemies.data[i]->hitPoints, 30.0f * 1.1f);
    }
}

TEST_F(WaveTest, Wave3Has18FightersAnd4Fighter2) {
    runToWave(3);
    expectCounts({18, 4, 0, 0, 0, 0, 0});
    EXPECT_EQ(g_game->difficulty, difficultyAt(3));
    expectScaled<Fighter>(30.0f, 50.0f);
    expectScaled<Fighter2>(65.0f, 125.0f);
}

TEST_F(WaveTest, Wave6AddsFiveHammerheads) {
    runToWave(6);
    expectCounts({25, 10, 5, 0, 0, 0, 0});
    expectScaled<Hammerhead>(95.0f, 350.0f);
}

TEST_F(WaveTest, Wave9AddsProbes) {
    runToWave(9);
    expectCounts({32, 17, 13, 23, 0, 0, 0});
    expectScaled<Probe>(15.0f, 100.0f);
}

TEST_F(WaveTest, Wave13AddsProbe2) {
    runToWave(13);
    expectCounts({42, 26, 23, 35, 23, 0, 0});
    expectScaled<Probe2>(25.0f, 175.0f);
}

TEST_F(WaveTest, Wave15IsTheFirstWithHammerhead2AndBringsThree) {
    runToWave(14);
    EXPECT_EQ(countOf<Hammerhead2>(), 0);
    runToWave(15);
    expectCounts({47, 30, 28, 41, 29, 3, 0});
    expectScaled<Hammerhead2>(165.0f, 750.0f);
}

TEST_F(WaveTest, Wave16Composition) {
    runToWave(16);
    expectCounts({49, 32, 30, 44, 32, 5, 0});
}

TEST_F(WaveTest, Wave17IsTheFirstWithProbe3And231EnemiesInAll) {
    runToWave(17);
    expectCounts({51, 34, 33, 47, 35, 8, 23});
    EXPECT_EQ(g_game->enemies.count, 231u);
    EXPECT_EQ(g_game->difficulty, difficultyAt(17));
    expectScaled<Probe3>(35.0f, 225.0f);
    expectScaled<Fighter>(30.0f, 50.0f);
}
