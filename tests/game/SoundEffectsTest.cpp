// Sound effects: every game event plays its effect once, placed around the ship on the wrapping
// world; caps, intervals and the channel plan under bursts; the laser's hum; the fade on Escape.
// The mixer is replaced by a recorder of what would play.

#include <cmath>
#include <vector>

#include <SDL/SDL_keysym.h>

#include "game/EnemyPlasma.h"
#include "game/Laser.h"
#include "game/Main.h"
#include "game/Plasma.h"
#include "game/Player.h"
#include "game/Powerup.h"
#include "game/SoundEffects.h"
#include "tests/support/AllocationCounter.h"
#include "tests/support/GameSession.h"

using namespace testing_support;
using orvel::Orvel;
using orvel::vec2;

namespace {

// What SoundEffects asked of the mixer, in order. Every effect lasts `lengthMs` unless set.
class RecordingOutput : public SoundOutput {
public:
    RecordingOutput() {
        plays.reserve(4096);
        stops.reserve(256);
        fades.reserve(16);
        for (int e = 0; e < SFX_COUNT; ++e)
            for (unsigned v = 0; v < SoundEffects::MAX_VARIANTS; ++v) lengths[e][v] = 1000;
    }
    uint32_t length(SoundEffect effect, int variant) const override { return lengths[effect][variant]; }
    void play(const SoundPlay& p) override { plays.push_back(p); }
    void stop(int channel, int ms) override { stops.push_back({channel, ms}); }
    void fadeOutAll(int ms) override { fades.push_back(ms); }
    void pauseAll() override { ++pauses; }
    void resumeAll() override { ++resumes; }

    int count(SoundEffect e) const {
        int n = 0;
        for (const SoundPlay& p : plays) n += p.effect == e;
        return n;
    }
    const SoundPlay& last(SoundEffect e) const {
        for (auto it = plays.rbegin(); it != plays.rend(); ++it)
            if (it->effect == e) return *it;
        static const SoundPlay none{-1, SFX_NONE, -1, false, -1, 0, 0};
        return none;
    }
    // Every effect that played, in order, without repeats next to each other.
    std::vector<SoundEffect> effects() const {
        std::vector<SoundEffect> out;
        for (const SoundPlay& p : plays) out.push_back(p.effect);
        return out;
    }

    struct Stop {
        int channel, ms;
    };
    std::vector<SoundPlay> plays;
    std::vector<Stop> stops;
    std::vector<int> fades;
    int pauses = 0;
    int resumes = 0;
    uint32_t lengths[SFX_COUNT][SoundEffects::MAX_VARIANTS];
};

// The channel volume of an effect heard at full level.
int fullVolume(SoundEffect e) {
    return (int)std::lround(SoundEffects::settings(e).volume * 128.0f);
}

class SoundEffectsTest : public SessionTest {
protected:
    void SetUp() override {
        SessionTest::SetUp();
        g_sound.setOutput(&out);
    }
    void TearDown() override {
        g_sound.setOutput(nullptr);
        SessionTest::TearDown();
    }

    // A session with the ship grown in at the world's centre, the first wave not yet come, and
    // nothing recorded.
    void startGrownIn() {
        g_game->init();
        player = g_game->player;
        // Grows in for a second from START.
        t = START + 1100;
        frame();
        out.plays.clear();
    }
    // One frame of the whole session at t, with the given input, then the clock moves 16 ms on.
    void frame(uint32_t buttons = 0, int mouseX = 640, int mouseY = 360, int key = -1) {
        setInput(buttons, mouseX, mouseY, key);
        step(t);
        t += 16;
    }

    RecordingOutput out;
    Player* player = nullptr;
    uint32_t t = START;
};

} // namespace

// --- Placement ---

TEST(SoundPlacement, SourceAtTheShipIsFullAndCentred) {
    const SoundEffects::Placement p =
        SoundEffects::place(vec2(1000, 1000), vec2(1000, 1000), WORLD, WORLD, 640.0f, 1280.0f);
    EXPECT_EQ(p.gain, 1.0f);
    EXPECT_EQ(p.left, 255);
    EXPECT_EQ(p.right, 255);
}

TEST(SoundPlacement, VolumeFallsAsTheSquareOfTheWayFromNearToTheHearingRange) {
    // 240 units: still full.
    EXPECT_EQ(SoundEffects::place(vec2(1240, 1000), vec2(1000, 1000), WORLD, WORLD, 640, 1280).gain, 1.0f);
    // Halfway from 240 to 1920: a quarter.
    EXPECT_FLOAT_EQ(SoundEffects::place(vec2(2080, 1000), vec2(1000, 1000), WORLD, WORLD, 640, 1280).gain, 0.25f);
    // Straight down, a quarter of the way: (3/4)^2.
    EXPECT_FLOAT_EQ(SoundEffects::place(vec2(1000, 1660), vec2(1000, 1000), WORLD, WORLD, 640, 1280).gain,
                    0.5625f);
    // At the hearing range and beyond: silent.
    EXPECT_EQ(SoundEffects::place(vec2(2920, 1000), vec2(1000, 1000), WORLD, WORLD, 640, 1280).gain, 0.0f);
    EXPECT_EQ(SoundEffects::place(vec2(3000, 1000), vec2(1000, 1000), WORLD, WORLD, 640, 1280).gain, 0.0f);
}

TEST(SoundPlacement, SourceAcrossTheWorldEdgeIsHeardFromItsNearestCopy) {
    // 100 units past the right edge of the ship's side: 196 away through the wrap, not 3900.
    const vec2 ship(4000, 2048), source(100, 2048);
    const vec2 copy = SoundEffects::nearestCopy(source, ship, WORLD, WORLD);
    EXPECT_EQ(copy.x, 4196.0f);
    EXPECT_EQ(copy.y, 2048.0f);
    EXPECT_EQ(SoundEffects::place(source, ship, WORLD, WORLD, 836, 1280).gain, 1.0f);
    // Diagonally across the corner: (4000, 4000) hears (200, 200) from (4296, 4296), 419 away.
    const SoundEffects::Placement corner =
        SoundEffects::place(vec2(200, 200), vec2(4000, 4000), WORLD, WORLD, 640, 1280);
    const float rest = 1.0f - (std::sqrt(2.0f * 296.0f * 296.0f) - 240.0f) / 1680.0f;
    EXPECT_FLOAT_EQ(corner.gain, rest * rest);
}

TEST(SoundPlacement, PanFollowsTheScreenXOfTheCopy) {
    const vec2 ship(1000, 1000);
    // The right edge: the left ear keeps a quarter.
    SoundEffects::Placement p = SoundEffects::place(ship, ship, WORLD, WORLD, 1280, 1280);
    EXPECT_EQ(p.left, 64);
    EXPECT_EQ(p.right, 255);
    // Halfway to the left edge: the right ear keeps 1 - 0.75 / 2.
    p = SoundEffects::place(ship, ship, WORLD, WORLD, 320, 1280);
    EXPECT_EQ(p.left, 255);
    EXPECT_EQ(p.right, 159);
    // Off the screen: as at its edge.
    p = SoundEffects::place(ship, ship, WORLD, WORLD, -500, 1280);
    EXPECT_EQ(p.left, 255);
    EXPECT_EQ(p.right, 64);
}

TEST_F(SoundEffectsTest, WorldSoundIsPlacedFromTheShipAndTheCamera) {
    startGrownIn();
    // Straight right of the ship, across the world edge from its left side.
    player->position = vec2(100, 2048);
    frame();
    const vec2 source(100 - 1080 + WORLD, 2048);
    g_sound.playAt(SFX_ENEMY_SHOT, source);
    ASSERT_EQ(out.count(SFX_ENEMY_SHOT), 1);
    const SoundPlay& p = out.last(SFX_ENEMY_SHOT);
    // 1080 units: a quarter of the effect's level.
    EXPECT_EQ(p.volume, (int)std::lround(SoundEffects::settings(SFX_ENEMY_SHOT).volume * 0.25f * 128.0f));
    const float screenX = g_world->worldToScreen(vec2(100 - 1080, 2048)).x;
    ASSERT_LT(screenX, 0.0f);
    // Off the left of the screen: the right ear keeps a quarter.
    EXPECT_EQ(p.left, 255);
    EXPECT_EQ(p.right, 64);
    EXPECT_FALSE(p.loop);
    EXPECT_GE(p.channel, SoundEffects::FIRST_WORLD_CHANNEL);
}

TEST_F(SoundEffectsTest, WorldSoundBeyondHearingDoesNotPlay) {
    startGrownIn();
    g_sound.playAt(SFX_SMALL_EXPLOSION, player->position + vec2(0, 1920));
    EXPECT_EQ(out.plays.size(), 0u);
    // Nor does it hold back the next one of its kind.
    g_sound.playAt(SFX_SMALL_EXPLOSION, player->position + vec2(0, 100));
    EXPECT_EQ(out.count(SFX_SMALL_EXPLOSION), 1);
}

TEST_F(SoundEffectsTest, ShipsOwnSoundsAreCentredAndFullWhereverTheyHappen) {
    startGrownIn();
    g_sound.playAt(SFX_PLASMA_SHOT, player->position + vec2(1500, 0));
    ASSERT_EQ(out.count(SFX_PLASMA_SHOT), 1);
    const SoundPlay& p = out.last(SFX_PLASMA_SHOT);
    EXPECT_EQ(p.volume, fullVolume(SFX_PLASMA_SHOT));
    EXPECT_EQ(p.left, 255);
    EXPECT_EQ(p.right, 255);
    EXPECT_GE(p.channel, SoundEffects::FIRST_OWN_CHANNEL);
    EXPECT_LT(p.channel, SoundEffects::FIRST_WORLD_CHANNEL);
}

// --- Events ---

TEST_F(SoundEffectsTest, PlasmaShotPlaysOncePerShot) {
    startGrownIn();
    const uint32_t first = t;
    frame(LEFT_BUTTON);
    EXPECT_EQ(out.effects(), std::vector<SoundEffect>{SFX_PLASMA_SHOT});
    // Five shots a second: none 16 ms later, the next one 200 ms after the first.
    frame(LEFT_BUTTON);
    EXPECT_EQ(out.count(SFX_PLASMA_SHOT), 1);
    t = first + 200;
    frame(LEFT_BUTTON);
    EXPECT_EQ(out.count(SFX_PLASMA_SHOT), 2);
}

TEST_F(SoundEffectsTest, LaserIgnitesOnceAndHumsWhileABeamLives) {
    startGrownIn();
    frame(RIGHT_BUTTON);
    EXPECT_EQ(out.count(SFX_LASER_START), 1);
    ASSERT_EQ(out.count(SFX_LASER_HUM), 1);
    const SoundPlay hum = out.last(SFX_LASER_HUM);
    EXPECT_EQ(hum.channel, SoundEffects::HUM_CHANNEL);
    EXPECT_TRUE(hum.loop);
    EXPECT_EQ(hum.volume, fullVolume(SFX_LASER_HUM));
    // Held for a second: four more beams, each while one lives, so no new ignition or hum.
    for (int i = 0; i < 62; ++i) frame(RIGHT_BUTTON);
    EXPECT_EQ(out.count(SFX_LASER_START), 1);
    EXPECT_EQ(out.count(SFX_LASER_HUM), 1);
    EXPECT_TRUE(out.stops.empty());
    // Let go: the last beam lives 650 ms from its shot, then the hum fades.
    const uint32_t lastBeamEnd = (uint32_t)player->laser->lastShot + 650;
    while (t + 16 < lastBeamEnd) frame();
    EXPECT_TRUE(out.stops.empty());
    frame();
    frame();
    ASSERT_EQ(out.stops.size(), 1u);
    EXPECT_EQ(out.stops[0].channel, SoundEffects::HUM_CHANNEL);
    EXPECT_EQ(out.stops[0].ms, SoundEffects::HUM_RELEASE);
    // A new press ignites again.
    frame(RIGHT_BUTTON);
    EXPECT_EQ(out.count(SFX_LASER_START), 2);
    EXPECT_EQ(out.count(SFX_LASER_HUM), 2);
}

TEST_F(SoundEffectsTest, EnemyShotSoundsAtTheEnemy) {
    startGrownIn();
    Enemy* e = listInWorld(new Fighter());
    e->position = player->position + vec2(300, 0);
    e->weapon->position = orvel::vec3(e->position.x, e->position.y, 0);
    e->target = player->position;
    e->attack();
    ASSERT_EQ(out.count(SFX_ENEMY_SHOT), 1);
    // 300 units away: (1 - 60 / 1680)^2 of the level.
    const float rest = 1.0f - 60.0f / 1680.0f;
    EXPECT_EQ(out.last(SFX_ENEMY_SHOT).volume,
              (int)std::lround(SoundEffects::settings(SFX_ENEMY_SHOT).volume * rest * rest * 128.0f));
    EXPECT_LT(out.last(SFX_ENEMY_SHOT).left, 255);
    EXPECT_EQ(out.last(SFX_ENEMY_SHOT).right, 255);
}

TEST_F(SoundEffectsTest, PlasmaHitSparksOnceWhereItHits) {
    startGrownIn();
    DummyEnemy* target = addDummyInWorld(player->position.x + 200, player->position.y, 40);
    (void)target;
    // Aim right; the shot flies 200 units in a few frames and hits the survivor.
    frame(LEFT_BUTTON, 1000, 360);
    for (int i = 0; i < 30; ++i) frame(0, 1000, 360);
    EXPECT_EQ(out.count(SFX_PLASMA_SHOT), 1);
    EXPECT_EQ(out.count(SFX_PLASMA_SPARK), 1);
    EXPECT_EQ(target->hits, 1);
}

TEST_F(SoundEffectsTest, EnemyPlasmaHitOnTheShipSoundsAsAHitOnly) {
    startGrownIn();
    EnemyPlasma* gun = keep(new EnemyPlasma());
    gun->rate = -1.0f;
    gun->position = orvel::vec3(player->position.x - 100, player->position.y, 0);
    gun->shoot(vec2(1, 0));
    for (int i = 0; i < 20; ++i) {
        setTime(t += 16);
        gun->update();
    }
    EXPECT_EQ(out.count(SFX_ENEMY_SHOT), 1);
    EXPECT_EQ(out.count(SFX_PLAYER_HIT), 1);
    EXPECT_EQ(out.count(SFX_PLASMA_SPARK), 0);
}

TEST_F(SoundEffectsTest, LaserBurnSoundsWhenABeamStartsBurningATarget) {
    startGrownIn();
    DummyEnemy* target = addDummyInWorld(player->position.x + 200, player->position.y, 40);
    frame(RIGHT_BUTTON, 1000, 360);
    EXPECT_EQ(out.count(SFX_LASER_BURN), 1);
    EXPECT_GT(target->hits, 0);
    // The same beam burning on: no new burn.
    frame(0, 1000, 360);
    frame(0, 1000, 360);
    EXPECT_EQ(out.count(SFX_LASER_BURN), 1);
}

TEST_F(SoundEffectsTest, FightersAndProbesExplodeSmallHammerheadsLarge) {
    startGrownIn();
    const vec2 near = player->position + vec2(100, 0);
    Enemy* kinds[] = {new Fighter(), new Fighter2(), new Probe(), new Probe2(), new Probe3(),
                      new Hammerhead(), new Hammerhead2()};
    for (Enemy* e : kinds) {
        listInWorld(e);
        e->dropChance = 0.0f;
        e->position = near;
        e->destroy();
        t += 1000;
        setTime(t);
    }
    EXPECT_EQ(out.effects(),
              (std::vector<SoundEffect>{SFX_SMALL_EXPLOSION, SFX_SMALL_EXPLOSION, SFX_SMALL_EXPLOSION,
                                        SFX_SMALL_EXPLOSION, SFX_SMALL_EXPLOSION, SFX_LARGE_EXPLOSION,
                                        SFX_LARGE_EXPLOSION}));
}

TEST_F(SoundEffectsTest, ExplosionsTakeRandomPitchesWithoutTouchingTheGamesRandomness) {
    startGrownIn();
    const int intCursor = g_rand.intCursor, floatCursor = g_rand.floatCursor;
    int seen[4] = {0, 0, 0, 0};
    for (int i = 0; i < 40; ++i) {
        g_sound.playAt(SFX_SMALL_EXPLOSION, player->position);
        setTime(t += 1000);
    }
    ASSERT_EQ(out.count(SFX_SMALL_EXPLOSION), 40);
    for (const SoundPlay& p : out.plays) {
        ASSERT_GE(p.variant, 0);
        ASSERT_LT(p.variant, 4);
        ++seen[p.variant];
    }
    for (int v = 0; v < 4; ++v) EXPECT_GT(seen[v], 0) << v;
    EXPECT_EQ(g_rand.intCursor, intCursor);
    EXPECT_EQ(g_rand.floatCursor, floatCursor);
}

TEST_F(SoundEffectsTest, ShipHitDeathAndRespawnEachSoundOnce) {
    startGrownIn();
    player->damage(10.0f);
    EXPECT_EQ(out.effects(), std::vector<SoundEffect>{SFX_PLAYER_HIT});
    // The killing blow is a death, not a hit.
    player->damage(1000.0f);
    EXPECT_EQ(out.effects(), (std::vector<SoundEffect>{SFX_PLAYER_HIT, SFX_PLAYER_DEATH}));
    // 2.5 s of waiting and 3.5 s of flight, then the grow-in.
    const uint32_t died = t;
    while (t < died + 6100) frame();
    EXPECT_EQ(out.count(SFX_PLAYER_HIT), 1);
    EXPECT_EQ(out.count(SFX_PLAYER_DEATH), 1);
    EXPECT_EQ(out.count(SFX_RESPAWN), 1);
    // Hits while growing in do not count, nor sound.
    player->damage(10.0f);
    EXPECT_EQ(out.count(SFX_PLAYER_HIT), 1);
}

TEST_F(SoundEffectsTest, DroppedPowerupAppearsWithASound) {
    startGrownIn();
    Enemy* e = listInWorld(new Fighter());
    e->position = player->position + vec2(500, 0);
    e->dropChance = 1.0f;
    e->destroy();
    EXPECT_EQ(out.effects(), (std::vector<SoundEffect>{SFX_SMALL_EXPLOSION, SFX_POWERUP_APPEARS}));
    EXPECT_EQ(g_game->powerups.count, 1u);
}

TEST_F(SoundEffectsTest, EachPowerupKindChimesAtItsOwnPitch) {
    startGrownIn();
    for (int kind = 0; kind < 7; ++kind) {
        Powerup* p = new Powerup();
        g_game->powerups.push(p);
        g_game->actors.push(p);
        p->position = player->position;
        p->kind = kind;
        p->collect();
        delete p;
        setTime(t += 1000);
    }
    ASSERT_EQ(out.count(SFX_POWERUP_COLLECTED), 7);
    int kind = 0;
    for (const SoundPlay& p : out.plays) {
        if (p.effect != SFX_POWERUP_COLLECTED) continue;
        EXPECT_EQ(p.variant, kind) << kind;
        EXPECT_EQ(p.volume, fullVolume(SFX_POWERUP_COLLECTED));
        ++kind;
    }
    // Only the MegaNuke blasts.
    EXPECT_EQ(out.count(SFX_MEGANUKE), 1);
}

TEST_F(SoundEffectsTest, WaveBannerSoundsOncePerWave) {
    startGrownIn();
    // The first wave comes 5 s after init.
    while (t < START + 5100) frame();
    EXPECT_EQ(out.count(SFX_WAVE_BANNER), 1);
    EXPECT_EQ(g_game->wave, 1);
    clearEnemies();
    frame();
    EXPECT_EQ(out.count(SFX_WAVE_BANNER), 2);
    EXPECT_EQ(g_game->wave, 2);
}

TEST_F(SoundEffectsTest, GameOverSoundsOnce) {
    startGrownIn();
    g_game->lives = 0;
    player->damage(1000.0f);
    for (int i = 0; i < 10; ++i) frame();
    EXPECT_FALSE(g_game->running);
    EXPECT_EQ(out.effects(), (std::vector<SoundEffect>{SFX_PLAYER_DEATH, SFX_GAME_OVER}));
}

TEST_F(SoundEffectsTest, TheLastDeathEndsTheLasersHum) {
    startGrownIn();
    frame(RIGHT_BUTTON);
    ASSERT_EQ(out.count(SFX_LASER_HUM), 1);
    g_game->lives = 0;
    player->damage(1000.0f);
    ASSERT_EQ(out.stops.size(), 1u);
    EXPECT_EQ(out.stops[0].channel, SoundEffects::HUM_CHANNEL);
    // The beam's 650 ms pass without a word from the laser, which is no longer updated.
    for (int i = 0; i < 60; ++i) frame();
    EXPECT_EQ(out.stops.size(), 1u);
    EXPECT_EQ(out.count(SFX_LASER_HUM), 1);
}

TEST_F(SoundEffectsTest, EscapeFadesTheEffectsWithTheMusic) {
    startGrownIn();
    runlevel = RUNLEVEL_GAME;
    // No fade runs in a fresh fader.
    ASSERT_TRUE(g_fader->done());
    setInput(0, 640, 360, SDLK_ESCAPE);
    runFrameLogic();
    EXPECT_EQ(runlevel, RUNLEVEL_FADING_OUT);
    EXPECT_EQ(out.fades, std::vector<int>{950});
}

// --- Caps, intervals and channels ---

namespace {

void setTimeTo(uint32_t ms) { Orvel::currentTime = ms; }

// World sounds of every kind, 130 ms apart, until every world channel plays one.
const SoundEffect WORLD_EFFECTS[] = {SFX_ENEMY_SHOT, SFX_PLASMA_SPARK, SFX_LASER_BURN, SFX_SMALL_EXPLOSION,
                                    SFX_LARGE_EXPLOSION, SFX_POWERUP_APPEARS};

void fillWorldChannels(const vec2& at, uint32_t& now) {
    for (int round = 0; round < 6; ++round) {
        setTimeTo(now);
        for (SoundEffect e : WORLD_EFFECTS) g_sound.playAt(e, at);
        now += 130;
    }
    setTimeTo(now);
}

} // namespace


TEST_F(SoundEffectsTest, FiftyKillsInOneFrameMakeOneExplosion) {
    startGrownIn();
    for (int i = 0; i < 50; ++i) {
        Enemy* e = listInWorld(new Fighter());
        e->position = player->position + vec2((float)(i % 10) * 20.0f, (float)(i / 10) * 20.0f);
        e->dropChance = 1.0f;
    }
    // Each call skips the enemy swapped into a destroyed one's slot; more calls in the same
    // frame kill them all.
    for (int call = 0; call < 10 && g_game->enemies.count > 0; ++call)
        g_game->killEnemiesInRadius(player->position, 400.0f);
    EXPECT_EQ(g_game->enemies.count, 0u);
    EXPECT_EQ(out.count(SFX_SMALL_EXPLOSION), 1);
    EXPECT_EQ(out.count(SFX_POWERUP_APPEARS), 1);
    EXPECT_EQ(out.plays.size(), 2u);
}

TEST_F(SoundEffectsTest, AnEffectWaitsItsIntervalThenStopsAtItsCap) {
    startGrownIn();
    const vec2 here = player->position;
    setTime(t);
    // Explosions: 40 ms apart, five at once.
    g_sound.playAt(SFX_SMALL_EXPLOSION, here);
    setTime(t + 39);
    g_sound.playAt(SFX_SMALL_EXPLOSION, here);
    EXPECT_EQ(out.count(SFX_SMALL_EXPLOSION), 1);
    for (uint32_t k = 1; k <= 5; ++k) {
        setTime(t + 40 * k);
        g_sound.playAt(SFX_SMALL_EXPLOSION, here);
    }
    EXPECT_EQ(out.count(SFX_SMALL_EXPLOSION), 5);
    EXPECT_EQ(g_sound.playing(SFX_SMALL_EXPLOSION, t + 200), 5u);
    // The first ends after its 1000 ms: room for one more.
    setTime(t + 1000);
    g_sound.playAt(SFX_SMALL_EXPLOSION, here);
    EXPECT_EQ(out.count(SFX_SMALL_EXPLOSION), 6);
}

TEST_F(SoundEffectsTest, ShipsSoundsPlayWhenTheWorldFillsEveryChannel) {
    startGrownIn();
    uint32_t now = t;
    fillWorldChannels(player->position + vec2(0, 1500), now);
    for (int c = SoundEffects::FIRST_WORLD_CHANNEL; c < SoundEffects::CHANNELS; ++c)
        EXPECT_GT(g_sound.voice(c).end, now) << c;
    for (const SoundPlay& p : out.plays) EXPECT_GE(p.channel, SoundEffects::FIRST_WORLD_CHANNEL);
    // The ship's own sounds still have their channels.
    g_sound.play(SFX_PLAYER_HIT);
    g_sound.play(SFX_WAVE_BANNER);
    EXPECT_EQ(out.count(SFX_PLAYER_HIT), 1);
    EXPECT_EQ(out.count(SFX_WAVE_BANNER), 1);
    EXPECT_EQ(out.last(SFX_PLAYER_HIT).channel, SoundEffects::FIRST_OWN_CHANNEL);
    EXPECT_EQ(out.last(SFX_WAVE_BANNER).channel, SoundEffects::FIRST_OWN_CHANNEL + 1);
}

TEST_F(SoundEffectsTest, ALouderWorldSoundTakesTheQuietestChannelAndAQuieterOneWaits) {
    startGrownIn();
    uint32_t now = t;
    fillWorldChannels(player->position + vec2(0, 1000), now);
    const size_t full = out.plays.size();
    int quietest = SoundEffects::FIRST_WORLD_CHANNEL;
    for (int c = SoundEffects::FIRST_WORLD_CHANNEL; c < SoundEffects::CHANNELS; ++c) {
        ASSERT_GT(g_sound.voice(c).end, now) << c;
        if (g_sound.voice(c).volume < g_sound.voice(quietest).volume) quietest = c;
    }
    // The caps add up to more than the world's channels, so some effect has room left.
    SoundEffect spare = SFX_NONE;
    for (SoundEffect e : WORLD_EFFECTS)
        if (g_sound.playing(e, now) < SoundEffects::settings(e).cap) spare = e;
    ASSERT_NE(spare, SFX_NONE);
    // Quieter than everything playing: refused.
    g_sound.playAt(spare, player->position + vec2(0, 1500));
    EXPECT_EQ(out.plays.size(), full);
    // Close by: takes the quietest channel.
    g_sound.playAt(spare, player->position);
    ASSERT_EQ(out.plays.size(), full + 1);
    EXPECT_EQ(out.plays.back().channel, quietest);
}

TEST_F(SoundEffectsTest, TheShipsSoundsSpillOntoFreeWorldChannelsThenTakeTheOldestOfTheirOwn) {
    startGrownIn();
    uint32_t now = t;
    setTimeTo(now);
    // Six different sounds of the ship's fill its channels 1-6 in order.
    const SoundEffect own[] = {SFX_PLAYER_DEATH, SFX_RESPAWN, SFX_MEGANUKE, SFX_WAVE_BANNER, SFX_GAME_OVER,
                               SFX_LASER_START, SFX_PLAYER_HIT};
    for (int i = 0; i < 6; ++i) {
        g_sound.play(own[i]);
        setTimeTo(now += 1);
    }
    for (int i = 0; i < 6; ++i) EXPECT_EQ(out.plays[i].channel, SoundEffects::FIRST_OWN_CHANNEL + i) << i;
    // A seventh goes to the first free world channel.
    g_sound.play(own[6]);
    EXPECT_EQ(out.plays.back().channel, SoundEffects::FIRST_WORLD_CHANNEL);
    // With the world full as well, the next one replaces the oldest of the ship's.
    fillWorldChannels(player->position + vec2(0, 100), now);
    g_sound.play(SFX_POWERUP_COLLECTED, 1);
    EXPECT_EQ(out.plays.back().effect, SFX_POWERUP_COLLECTED);
    EXPECT_EQ(out.plays.back().channel, SoundEffects::FIRST_OWN_CHANNEL);
}

TEST_F(SoundEffectsTest, TheShipsSoundAtItsCapRestartsItsOldestVoice) {
    startGrownIn();
    setTimeTo(t);
    g_sound.play(SFX_WAVE_BANNER);
    const int channel = out.plays.back().channel;
    setTimeTo(t + 300);
    g_sound.play(SFX_WAVE_BANNER);
    ASSERT_EQ(out.count(SFX_WAVE_BANNER), 2);
    EXPECT_EQ(out.plays.back().channel, channel);
    EXPECT_EQ(g_sound.playing(SFX_WAVE_BANNER, t + 300), 1u);
    EXPECT_EQ(g_sound.voice(channel).start, t + 300);
}

TEST_F(SoundEffectsTest, AnEffectThatDidNotLoadStaysSilent) {
    startGrownIn();
    out.lengths[SFX_PLASMA_SHOT][0] = 0;
    frame(LEFT_BUTTON);
    EXPECT_EQ(out.count(SFX_PLASMA_SHOT), 0);
    // The shot itself still flies.
    EXPECT_GT(player->plasma->ring.shots[player->plasma->ring.shotCursor].finish, 0u);
    // And other effects play on.
    player->damage(1.0f);
    EXPECT_EQ(out.count(SFX_PLAYER_HIT), 1);
}

TEST_F(SoundEffectsTest, WithoutAnOutputNothingIsRecordedOrKept) {
    startGrownIn();
    g_sound.setOutput(nullptr);
    frame(LEFT_BUTTON | RIGHT_BUTTON);
    player->damage(1.0f);
    g_sound.fadeOutAll(950);
    EXPECT_TRUE(out.plays.empty());
    EXPECT_TRUE(out.fades.empty());
    for (int c = 0; c < SoundEffects::CHANNELS; ++c) EXPECT_EQ(g_sound.voice(c).effect, -1) << c;
}

TEST_F(SoundEffectsTest, AFullWaveSeventeenFightAllocatesNothingPerFrame) {
    startGrownIn();
    while (g_game->wave < 17) {
        clearEnemies();
        g_game->nextWave();
    }
    // Warm up: rings, slices and the recorder grow to their sizes.
    for (int i = 0; i < 120; ++i) frame(LEFT_BUTTON | RIGHT_BUTTON, 200 + (i * 7) % 900, 300);
    const size_t playsBefore = out.plays.size();
    const size_t before = allocationCount();
    for (int i = 0; i < 120; ++i) frame(LEFT_BUTTON | RIGHT_BUTTON, 200 + (i * 7) % 900, 300);
    EXPECT_EQ(allocationCount(), before);
    // Effects did play meanwhile.
    EXPECT_GT(out.plays.size(), playsBefore);
}
