#pragma once
// The replay of the game being played, kept as last.nvr in $XDG_DATA_HOME/nightvector/replays/
// (~/.local/share/nightvector/replays/) when the game ends: at Game Over, when it is left with
// Escape, or when the window is closed. Each game replaces the last one's file.

#include <cstdint>
#include <string>

#include "game/replay/ReplayRecorder.h"

class Game;

class LastReplay {
public:
    // The file, or "" when there is no home to keep it in.
    static std::string defaultPath();

    // Keeps the replays in `path` ("" keeps none: the game is recorded but not saved).
    explicit LastReplay(const std::string& path);

    // A session started with its generators seeded from `seed`.
    void begin(uint32_t seed);
    // Around each g_game->update(); a game that is over is saved and recorded no further.
    void beforeUpdate();
    void afterUpdate(const Game& game);
    // Saves the game recorded so far, once: later calls do nothing until the next begin(). A
    // file that cannot be written gets one line on standard error ("Could not keep the replay
    // PATH: REASON"), and the game goes on.
    void save(const Game& game);

    bool recording() const { return recorder.recording(); }
    const ReplayRecorder& recorderInUse() const { return recorder; }
    const std::string& filePath() const { return path; }

private:
    ReplayRecorder recorder;
    std::string path;
};

// Made at start-up; null until then.
extern LastReplay* g_lastReplay;
