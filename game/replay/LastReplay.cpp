#include "game/replay/LastReplay.h"

#include <cstdio>

#include "engine/SafeFile.h"
#include "engine/UserDirs.h"
#include "game/Game.h"

using orvel::SafeFile;

LastReplay* g_lastReplay = nullptr;

std::string LastReplay::defaultPath() {
    const std::string data = orvel::UserDirs::dataHome();
    return data.empty() ? "" : data + "/nightvector/replays/last.nvr";
}

LastReplay::LastReplay(const std::string& path) : path(path) {}

void LastReplay::begin(uint32_t seed) { recorder.begin(seed); }

void LastReplay::beforeUpdate() { recorder.beforeUpdate(); }

void LastReplay::afterUpdate(const Game& game) {
    recorder.afterUpdate(game);
    if (recorder.recording() && !game.running) save(game);
}

void LastReplay::save(const Game& game) {
    if (!recorder.recording()) return;
    recorder.finish(game);
    if (path.empty()) return;
    const std::vector<uint8_t>& bytes = recorder.file().bytes();
    std::string error;
    if (!SafeFile::makeDirectories(SafeFile::directoryOf(path), error) ||
        !SafeFile::replace(path, std::string(bytes.begin(), bytes.end()), error))
        fprintf(stderr, "Could not keep the replay %s: %s\n", path.c_str(), error.c_str());
}
