#pragma once
// Sound effects: which effect a game event plays, on which mixer channel, how loud and where in
// the stereo field. The mixer sits behind SoundOutput, so nothing here calls SDL_mixer: without an
// output (no audio device) every call is a no-op, and tests put a recorder in its place.

#include <cstdint>

#include "engine/Vector.h"

enum SoundEffect {
    SFX_PLASMA_SHOT,
    SFX_LASER_START,
    SFX_LASER_HUM, // loops on its own channel while a beam is alive
    SFX_ENEMY_SHOT,
    SFX_PLASMA_SPARK,
    SFX_LASER_BURN,
    SFX_SMALL_EXPLOSION,
    SFX_LARGE_EXPLOSION,
    SFX_PLAYER_HIT,
    SFX_PLAYER_DEATH,
    SFX_RESPAWN,
    SFX_POWERUP_APPEARS,
    SFX_POWERUP_COLLECTED,
    SFX_MEGANUKE,
    SFX_WAVE_BANNER,
    SFX_GAME_OVER,
    SFX_COUNT,
    SFX_NONE = SFX_COUNT, // for a gun whose hits make no sound of their own
};

// One start of an effect as the mixer receives it.
struct SoundPlay {
    int channel;
    SoundEffect effect;
    int variant;   // which pitch of the effect, 0 the file's own
    bool loop;     // repeats until stopped
    int volume;    // 0..128, the mixer's channel volume
    uint8_t left;  // 0..255 per side; 255 on both is the centre at full level
    uint8_t right;
};

// What SoundEffects plays through: the mixer in the game, a recorder in tests.
class SoundOutput {
public:
    virtual ~SoundOutput();
    // ms that `variant` of `effect` lasts; 0 when it did not load, which keeps it silent.
    virtual uint32_t length(SoundEffect effect, int variant) const = 0;
    // Starts `play` on its channel, ending whatever the channel played.
    virtual void play(const SoundPlay& play) = 0;
    // Fades `channel` out over `ms` and ends it.
    virtual void stop(int channel, int ms) = 0;
    // Fades every channel out over `ms`.
    virtual void fadeOutAll(int ms) = 0;
    // Pauses every channel where it is; resumeAll goes on from there.
    virtual void pauseAll() = 0;
    virtual void resumeAll() = 0;
};

// How one effect is played.
struct EffectSettings {
    const char* file;     // under sfx/
    float volume;         // 0..1 of the channel's full volume, before distance
    unsigned cap;         // voices of the effect at once
    uint32_t interval;    // ms from one start of the effect to the next
    bool own;             // the ship's own sound: centred, full, on the ship's channels first
    unsigned variants;    // pitches the mixer output prepares; the game picks one per play
    const float* pitches; // `variants` playback speed ratios (2 plays an octave up in half the time)
};

class SoundEffects {
public:
    // The channel plan: the laser's hum alone on channel 0, the ship's own sounds on channels 1-6
    // (and on free world channels when those are full), everything placed in the world on 7-23.
    static constexpr int CHANNELS = 24;
    static constexpr int HUM_CHANNEL = 0;
    static constexpr int FIRST_OWN_CHANNEL = 1;
    static constexpr int FIRST_WORLD_CHANNEL = 7;
    static constexpr unsigned MAX_VARIANTS = 7;

    // Full volume up to NEAR world units from the ship, silent from HEARING_RANGE on (one and a
    // half screens), falling as the square of the way between.
    static constexpr float NEAR = 240.0f;
    static constexpr float HEARING_RANGE = 1920.0f;
    // The far ear of a source at the screen's edge keeps a quarter of the level.
    static constexpr float PAN_DEPTH = 0.75f;
    // ms the hum takes to fade when the last beam ends.
    static constexpr int HUM_RELEASE = 120;

    static const EffectSettings& settings(SoundEffect effect);

    SoundEffects();

    // Plays through `output` from now on; null makes every call a no-op. Forgets every voice.
    void setOutput(SoundOutput* output);
    SoundOutput* output() const { return out; }
    // Forgets every voice and every effect's last start, as at start-up.
    void reset();

    // The ship's own sound, or a world sound at the listener: centred, at the effect's volume.
    // `variant` picks a pitch; -1 lets the effect choose (a random one for explosions).
    void play(SoundEffect effect, int variant = -1);
    // A sound made at `position` in the world, placed relative to the ship. The ship's own
    // effects ignore the position.
    void playAt(SoundEffect effect, const orvel::vec2& position);
    // Starts the laser's hum when `on` and it is not playing; fades it out when not `on`.
    void hum(bool on);
    // Fades out everything that plays, as the music fades on Escape.
    void fadeOutAll(int ms);
    // Holds every effect where it is while the game is paused, and lets them go on. The game's
    // clock is held meanwhile, so the voices' ends stay right.
    void pauseAll();
    void resumeAll();

    // Distance volume (0..1) and the two sides of a sound at `position` heard from `listener`,
    // on the wrapping world of `worldWidth` x `worldHeight`, the screen `screenWidth` wide and
    // the copy's screen x found by `screenX`. The nearest wrapped copy of the source counts.
    struct Placement {
        float gain;
        uint8_t left;
        uint8_t right;
    };
    static Placement place(const orvel::vec2& position, const orvel::vec2& listener, float worldWidth,
                           float worldHeight, float copyScreenX, float screenWidth);
    // The copy of `position` nearest to `listener` on the wrapping world.
    static orvel::vec2 nearestCopy(const orvel::vec2& position, const orvel::vec2& listener, float worldWidth,
                                   float worldHeight);

    // What a channel plays, as far as this class knows: it keeps no state from the mixer.
    struct Voice {
        int effect;     // -1 when the channel was never used
        uint32_t start; // ms of Orvel::currentTime
        uint32_t end;   // start plus the effect's length; UINT32_MAX for the hum
        int volume;
    };
    const Voice& voice(int channel) const { return voices[channel]; }
    // Voices of `effect` still playing at `now`.
    unsigned playing(SoundEffect effect, uint32_t now) const;

private:
    // Picks a channel and starts the effect on it, unless the interval, silence, a world sound's
    // cap or a full house refuses it.
    void start(SoundEffect effect, int variant, const Placement& placement);
    int ownChannel(uint32_t now) const;
    // The channel of the earliest started voice of `effect` still playing; -1 if none.
    int oldestVoice(SoundEffect effect, uint32_t now) const;
    int worldChannel(uint32_t now, int volume) const;
    int pickVariant(const EffectSettings& s, int asked);

    SoundOutput* out;
    Voice voices[CHANNELS];
    uint32_t lastStart[SFX_COUNT];
    bool started[SFX_COUNT];
    bool humming;
    uint32_t variantSeed;
};

// The game's one set of sound effects; silent until an output is set.
extern SoundEffects g_sound;
