#pragma once
// Score entries for the tests of the table and the file.

#include <cstdint>
#include <string>

#include "game/scores/ScoreTable.h"

namespace testing_support {

inline ScoreEntry scoreEntry(const std::string& name, uint32_t score, uint32_t wave, int64_t when) {
    ScoreEntry e;
    e.name = name;
    e.score = score;
    e.wave = wave;
    e.when = when;
    return e;
}

} // namespace testing_support
