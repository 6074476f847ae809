// The game built alongside the tests, with the repository's data.

#include "tests/support/GameProcess.h"

namespace e2e {

const char* const GAME_BINARY = NIGHTVECTOR_BINARY;
const char* const DATA_ROOT = REPOSITORY_ROOT;

} // namespace e2e
