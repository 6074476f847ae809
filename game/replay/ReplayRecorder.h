#pragma once
// Records a game as it is played: at the session's start its header, then for every update of
// the game what that update read (the clock, the ship's keys and buttons, the pointer) and,
// every HASH_EVERY updates, the state hash after it; at the end the game's result. The frames
// go into a replay::Writer, which grows in large steps, so recording allocates nothing in
// nearly every frame.

#include <cstdint>

#include "game/replay/ReplayFormat.h"

class Game;

class ReplayRecorder {
public:
    static const unsigned HASH_EVERY = 60;

    ReplayRecorder();

    // A new session started with its generators seeded from `seed`; what was recorded before is
    // dropped.
    void begin(uint32_t seed);
    // Just before g_game->update(): what it is about to read. Nothing before begin().
    void beforeUpdate();
    // Just after it: the frame, with the state hash every HASH_EVERY updates.
    void afterUpdate(const Game& game);
    // The session ended, or stands where it was left: the result closes the file.
    void finish(const Game& game);

    bool recording() const { return active; }
    const replay::Writer& file() const { return writer; }

    // The frame the game is about to read, from Orvel's clock and input snapshot.
    static replay::Frame currentInput();

private:
    replay::Writer writer;
    replay::Frame pending;
    bool active;
};
