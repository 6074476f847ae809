#pragma once
// A volume heard while it is set under "Paused", where the music and the effects are held: a
// change of the music's volume lets the music play on until MUSIC_MS of real time have passed
// since the last change, and a change of the effects' volume plays one effect at the new level.

#include <cstdint>

class VolumePreview {
public:
    // Real ms the music plays on after the last change of its volume.
    static const uint32_t MUSIC_MS = 1500;

    VolumePreview();

    // The music's volume changed at real time `realNow`: the held music plays on.
    void musicChanged(uint32_t realNow);
    // The effects' volume changed: one effect plays, centred, at the new level.
    void effectsChanged();
    // Once a paused frame: holds the music again once MUSIC_MS have passed since the last change.
    void update(uint32_t realNow);
    // The pause ended and the music goes on in any case: nothing is held again.
    void stop() { playing = false; }
    // The music plays for a change of its volume.
    bool musicPlaying() const { return playing; }

private:
    bool playing;
    uint32_t since;
};
