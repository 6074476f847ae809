#pragma once
// Where the player's own files live, after the XDG base directory rules.

#include <string>

namespace orvel {

class UserDirs {
public:
    UserDirs() = delete;

    // $XDG_DATA_HOME when it is an absolute path, else $HOME/.local/share; "" without either.
    static std::string dataHome();
    // $XDG_CONFIG_HOME when it is an absolute path, else $HOME/.config; "" without either.
    static std::string configHome();
};

} // namespace orvel
