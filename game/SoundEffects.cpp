#include "game/SoundEffects.h"

#include <cmath>

#include "engine/Math.h"
#include "engine/Orvel.h"
#include "game/Game.h"
#include "game/Main.h"
#include "game/Player.h"
#include "game/RadarDisplay.h"
#include "scene/Scene2D.h"

using orvel::Math;
using orvel::vec2;

SoundEffects g_sound;

namespace {

const uint32_t FOREVER = UINT32_MAX;

// A little spread of pitch, so that a chain of kills does not sound like one sample repeated.
const float EXPLOSION_PITCHES[] = {1.0f, 0.93f, 1.07f, 0.87f};
// One chime per powerup kind, in the kinds' order, on the music's A minor: up a fifth (upgrade),
// the chime's own A (energy), a minor third (shield), a fourth (extra score), down a tone (hull),
// down a fourth (speed boost) and down a minor third (MegaNuke).
const float CHIME_PITCHES[] = {1.4983071f, 1.0f, 1.1892071f, 1.3348399f, 0.8908987f, 0.7491535f, 0.8408964f};
const float OWN_PITCH[] = {1.0f};

// The ship's own sounds are few and never placed; world sounds are many, so each has a cap and
// an interval that keep a full wave from turning into noise. The levels leave the music room:
// in a wave-17 fight the effects together stay about a decibel below it, and the loudest files
// (the long tones of the banner and the game over) play at 0.7.
const EffectSettings SETTINGS[SFX_COUNT] = {
    {"plasma_shot.wav", 0.7f, 2, 60, true, 1, OWN_PITCH},
    {"laser_start.wav", 0.7f, 1, 100, true, 1, OWN_PITCH},
    {"laser_loop.wav", 0.45f, 1, 0, true, 1, OWN_PITCH},
    {"enemy_shot.wav", 0.5f, 4, 70, false, 1, OWN_PITCH},
    {"plasma_spark.wav", 0.6f, 3, 50, false, 1, OWN_PITCH},
    {"laser_burn.wav", 0.5f, 2, 120, false, 1, OWN_PITCH},
    {"explosion_small.wav", 0.8f, 5, 40, false, 4, EXPLOSION_PITCHES},
    {"explosion_large.wav", 0.9f, 3, 60, false, 4, EXPLOSION_PITCHES},
    {"player_hit.wav", 0.8f, 1, 120, true, 1, OWN_PITCH},
    {"player_death.wav", 0.85f, 1, 0, true, 1, OWN_PITCH},
    {"respawn.wav", 0.8f, 1, 0, true, 1, OWN_PITCH},
    {"powerup_appear.wav", 0.7f, 2, 80, false, 1, OWN_PITCH},
    {"powerup_collect.wav", 0.8f, 2, 0, true, 7, CHIME_PITCHES},
    {"meganuke.wav", 0.8f, 1, 0, true, 1, OWN_PITCH},
    {"wave_banner.wav", 0.7f, 1, 0, true, 1, OWN_PITCH},
    {"game_over.wav", 0.7f, 1, 0, true, 1, OWN_PITCH},
};

const int MIX_MAX_VOLUME = 128;

// A level of 0..1 as one side of the mixer's panning.
uint8_t side(float level) {
    return (uint8_t)(int)std::lround(Math::clampf(level, 0.0f, 1.0f) * 255.0f);
}

} // namespace

SoundOutput::~SoundOutput() {}

const EffectSettings& SoundEffects::settings(SoundEffect effect) {
    return SETTINGS[effect];
}

SoundEffects::SoundEffects() : out(nullptr), voices(), lastStart(), started(), humming(false), variantSeed(1) {
    reset();
}

void SoundEffects::setOutput(SoundOutput* output) {
    out = output;
    reset();
}

void SoundEffects::reset() {
    for (Voice& v : voices)
        v = Voice{-1, 0, 0, 0};
    for (int i = 0; i < SFX_COUNT; ++i) {
        lastStart[i] = 0;
        started[i] = false;
    }
    humming = false;
    variantSeed = 1;
}

void SoundEffects::play(SoundEffect effect, int variant) {
    if (!out || effect >= SFX_COUNT) return;
    start(effect, variant, Placement{1.0f, 255, 255});
}

void SoundEffects::playAt(SoundEffect effect, const vec2& position) {
    if (!out || effect >= SFX_COUNT) return;
    const Player* player = g_game ? g_game->player : nullptr;
    if (SETTINGS[effect].own || !player || !g_world) {
        start(effect, -1, Placement{1.0f, 255, 255});
        return;
    }
    const vec2 copy = nearestCopy(position, player->position, g_world->worldWidth, g_world->worldHeight);
    const float screenX = g_world->worldToScreen(copy).x;
    start(effect, -1,
          place(position, player->position, g_world->worldWidth, g_world->worldHeight, screenX,
                (float)orvel::Orvel::getScreenWidth()));
}

void SoundEffects::hum(bool on) {
    if (!out || on == humming) return;
    humming = on;
    Voice& v = voices[HUM_CHANNEL];
    if (!on) {
        out->stop(HUM_CHANNEL, HUM_RELEASE);
        v.end = orvel::Orvel::currentTime;
        return;
    }
    if (out->length(SFX_LASER_HUM, 0) == 0) return;
    const int volume = (int)std::lround(SETTINGS[SFX_LASER_HUM].volume * MIX_MAX_VOLUME);
    out->play(SoundPlay{HUM_CHANNEL, SFX_LASER_HUM, 0, true, volume, 255, 255});
    v = Voice{SFX_LASER_HUM, orvel::Orvel::currentTime, FOREVER, volume};
}

void SoundEffects::fadeOutAll(int ms) {
    if (out) out->fadeOutAll(ms);
}

void SoundEffects::pauseAll() {
    if (out) out->pauseAll();
}

void SoundEffects::resumeAll() {
    if (out) out->resumeAll();
}

vec2 SoundEffects::nearestCopy(const vec2& position, const vec2& listener, float worldWidth, float worldHeight) {
    return listener + RadarDisplay::wrappedOffset(listener, position, worldWidth, worldHeight);
}

SoundEffects::Placement SoundEffects::place(const vec2& position, const vec2& listener, float worldWidth,
                                            float worldHeight, float copyScreenX, float screenWidth) {
    const float distance = RadarDisplay::wrappedOffset(listener, position, worldWidth, worldHeight).length();
    float gain = 1.0f;
    if (distance >= HEARING_RANGE) {
        gain = 0.0f;
    } else if (distance > NEAR) {
        const float rest = 1.0f - (distance - NEAR) / (HEARING_RANGE - NEAR);
        gain = rest * rest;
    }
    const float half = 0.5f * screenWidth;
    const float pan = Math::clampf((copyScreenX - half) / half, -1.0f, 1.0f);
    const float left = pan > 0.0f ? 1.0f - PAN_DEPTH * pan : 1.0f;
    const float right = pan < 0.0f ? 1.0f + PAN_DEPTH * pan : 1.0f;
    return Placement{gain, side(left), side(right)};
}

unsigned SoundEffects::playing(SoundEffect effect, uint32_t now) const {
    unsigned n = 0;
    for (const Voice& v : voices) {
        if (v.effect == effect && v.end > now) ++n;
    }
    return n;
}

void SoundEffects::start(SoundEffect effect, int variant, const Placement& placement) {
    const EffectSettings& s = SETTINGS[effect];
    const uint32_t now = orvel::Orvel::currentTime;
    if (started[effect] && now - lastStart[effect] < s.interval) return;
    const int volume = (int)std::lround(s.volume * placement.gain * MIX_MAX_VOLUME);
    if (volume <= 0) return;
    const int chosen = pickVariant(s, variant);
    const uint32_t length = out->length(effect, chosen);
    if (length == 0) return;
    // At its cap a world sound is dropped, while the ship's own restarts its oldest voice: the
    // latest of those is the one the player needs to hear.
    int channel = -1;
    if (playing(effect, now) >= s.cap) {
        if (!s.own) return;
        channel = oldestVoice(effect, now);
    } else {
        channel = s.own ? ownChannel(now) : worldChannel(now, volume);
    }
    if (channel < 0) return;

    started[effect] = true;
    lastStart[effect] = now;
    voices[channel] = Voice{effect, now, now + length, volume};
    out->play(SoundPlay{channel, effect, chosen, false, volume, placement.left, placement.right});
}

int SoundEffects::oldestVoice(SoundEffect effect, uint32_t now) const {
    int oldest = -1;
    for (int c = 0; c < CHANNELS; ++c) {
        if (voices[c].effect != effect || voices[c].end <= now) continue;
        if (oldest < 0 || voices[c].start < voices[oldest].start) oldest = c;
    }
    return oldest;
}

// A free channel of the ship's, else a free world channel, else the oldest of the ship's.
int SoundEffects::ownChannel(uint32_t now) const {
    int oldest = FIRST_OWN_CHANNEL;
    for (int c = FIRST_OWN_CHANNEL; c < FIRST_WORLD_CHANNEL; ++c) {
        if (voices[c].end <= now) return c;
        if (voices[c].start < voices[oldest].start) oldest = c;
    }
    for (int c = FIRST_WORLD_CHANNEL; c < CHANNELS; ++c) {
        if (voices[c].end <= now) return c;
    }
    return oldest;
}

// A free world channel, else the quietest world voice if it is quieter than `volume`; -1 if none.
int SoundEffects::worldChannel(uint32_t now, int volume) const {
    int quietest = -1;
    for (int c = FIRST_WORLD_CHANNEL; c < CHANNELS; ++c) {
        if (voices[c].end <= now) return c;
        if (quietest < 0 || voices[c].volume < voices[quietest].volume) quietest = c;
    }
    return voices[quietest].volume < volume ? quietest : -1;
}

int SoundEffects::pickVariant(const EffectSettings& s, int asked) {
    if (asked >= 0) return asked < (int)s.variants ? asked : 0;
    if (s.variants <= 1) return 0;
    // A linear congruential step of our own: the game's shared generator is left untouched.
    variantSeed = variantSeed * 1664525u + 1013904223u;
    return (int)((variantSeed >> 16) % s.variants);
}
