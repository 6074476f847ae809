#include "engine/UserDirs.h"

#include <cstdlib>

namespace orvel {

namespace {

// A relative setting is invalid by the rules and ignored, as is an empty one.
std::string baseDirectory(const char* variable, const char* underHome) {
    const char* set = std::getenv(variable);
    if (set && set[0] == '/') return set;
    const char* home = std::getenv("HOME");
    if (!home || home[0] != '/') return "";
    return std::string(home) + underHome;
}

} // namespace

std::string UserDirs::dataHome() { return baseDirectory("XDG_DATA_HOME", "/.local/share"); }

std::string UserDirs::configHome() { return baseDirectory("XDG_CONFIG_HOME", "/.config"); }

} // namespace orvel
