#pragma once
// The sound effects on SDL_mixer: one chunk per effect and pitch, on the channels SoundEffects
// picks. Only made once the audio device is open.

#include <cstdint>

#include "game/SoundEffects.h"

struct Mix_Chunk;

class MixerOutput : public SoundOutput {
public:
    MixerOutput();
    // Frees every chunk it made.
    ~MixerOutput() override;
    MixerOutput(const MixerOutput&) = delete;
    MixerOutput& operator=(const MixerOutput&) = delete;

    // Allocates SoundEffects::CHANNELS channels and loads every effect from `folder`, with its
    // pitches resampled from the file. An effect that will not load prints one line on standard
    // error ("Could not load sfx/name.wav: ...") and stays silent; nothing is printed otherwise.
    void load(const char* folder = "sfx");

    uint32_t length(SoundEffect effect, int variant) const override;
    void play(const SoundPlay& play) override;
    void stop(int channel, int ms) override;
    void fadeOutAll(int ms) override;
    void pauseAll() override;
    void resumeAll() override;

    // Every effect's volume from now on is its own times `gain` (0 to 1; 1 as loaded).
    void setGain(float gain) { effectGain = gain; }
    float gain() const { return effectGain; }

    // The chunk of `variant` of `effect`; null when the effect did not load.
    Mix_Chunk* chunk(SoundEffect effect, int variant) const {
        return pitched[effect][variant] ? pitched[effect][variant] : files[effect];
    }

private:
    // A copy of `source` played `ratio` times as fast, by linear interpolation of the device's
    // 16-bit frames; its sample memory goes to `buffer`. Null when the copy would be empty.
    Mix_Chunk* resampled(const Mix_Chunk* source, float ratio, uint8_t*& buffer) const;
    // ms that `c` lasts at the device's rate.
    uint32_t lengthOf(const Mix_Chunk* c) const;
    void freeAll();

    // Each effect's file as loaded, and its other pitches; null where a variant plays the file.
    Mix_Chunk* files[SFX_COUNT];
    Mix_Chunk* pitched[SFX_COUNT][SoundEffects::MAX_VARIANTS];
    // The sample memory of the pitched chunks, which the mixer does not own.
    uint8_t* buffers[SFX_COUNT][SoundEffects::MAX_VARIANTS];
    uint32_t lengths[SFX_COUNT][SoundEffects::MAX_VARIANTS];
    int frequency;
    int channelsPerFrame;
    bool sixteenBit;
    float effectGain;
};
