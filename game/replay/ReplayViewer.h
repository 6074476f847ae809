#pragma once
// Plays a kept game in the game's own loop: a fresh session from the replay's seed, then, each
// drawn frame, as many recorded updates as the speed asks, each given the clock and the input
// it had when the game was played. The player's keys and mouse do not reach the ship: Space
// pauses, 1, 2 and 4 set the speed, Escape leaves as it leaves the game. A state hash that
// differs from the recorded one stops the playback with "Replay diverged at frame N" on standard
// error. A small "Replay" label with the replay's time sits in the top right corner.

#include <cstddef>
#include <cstdint>
#include <string>

#include "game/replay/ReplayFormat.h"

class DirectScene2D;
class Text;

class ReplayViewer {
public:
    // Reads and checks the file at `path`. False, with the reason in `error`, when it cannot be
    // played: missing, unreadable, not a replay, another format, cut short or damaged.
    static bool load(const std::string& path, replay::Replay& replay, std::string& error);

    explicit ReplayViewer(const replay::Replay& replay);
    ~ReplayViewer();
    ReplayViewer(const ReplayViewer&) = delete;
    ReplayViewer& operator=(const ReplayViewer&) = delete;

    // The session the replay was recorded from, begun as it began: both generators seeded, the
    // clock where the first update found its frame before. The picture keeps the viewer's own
    // shake and flashes (g_settings, which a later save writes to the file), whatever the
    // recording's were.
    void start();
    // Once a frame, after Orvel::update: the viewer's keys, then the recorded updates the speed
    // asks for. The frame's own input snapshot is put back afterwards, so that the rest of the
    // frame (Escape, F1, Alt+Return) reads the player's keys.
    void update();
    // The label over the frame drawn so far.
    void draw();
    // Runs the rest of the replay at once, undrawn, so that the game stands where the recording
    // ended (checking the hashes as it goes).
    void fastForward();

    // Played to its end, or stopped at a hash that differs.
    bool finished() const { return next >= replayed.frames.size() || divergedAt >= 0; }
    long divergence() const { return divergedAt; }
    size_t framesPlayed() const { return next; }
    int speed() const { return stepsPerFrame; }
    bool paused() const { return holding; }
    // "Replay  m:ss", the time into the replay.
    std::string label() const;

private:
    // The next recorded update, with its hash checked.
    void step();
    // Up to `count` of them, with the frame's own input snapshot put back afterwards.
    void steps(size_t count);

    replay::Replay replayed;
    size_t next;
    long divergedAt;
    int stepsPerFrame;
    bool holding;
    DirectScene2D* root;
    Text* text;
};

// The viewer of a replay being played; null while the game itself is played.
extern ReplayViewer* g_replayViewer;
