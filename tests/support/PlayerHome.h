#pragma once
// A player's home of the test's own: a fresh directory that HOME, XDG_DATA_HOME and
// XDG_CONFIG_HOME point into while the object lives, so that no test reads or writes the files
// of whoever runs it. The old settings come back and the directory goes when the object does.

#include <string>

namespace testing_support {

class PlayerHome {
public:
    PlayerHome();
    ~PlayerHome();
    PlayerHome(const PlayerHome&) = delete;
    PlayerHome& operator=(const PlayerHome&) = delete;

    // The home directory, and the data and config homes inside it.
    const std::string& home() const { return root; }
    std::string dataHome() const { return root + "/data"; }
    std::string configHome() const { return root + "/config"; }

private:
    std::string root;
    struct Saved {
        const char* name;
        bool wasSet;
        std::string value;
    } saved[3];
};

} // namespace testing_support
