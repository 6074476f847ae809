#include "tests/support/PlayerHome.h"

#include <cstdlib>

namespace testing_support {

PlayerHome::PlayerHome()
    : saved{{"HOME", false, ""}, {"XDG_DATA_HOME", false, ""}, {"XDG_CONFIG_HOME", false, ""}} {
    char name[] = "/tmp/nightvector-home-XXXXXX";
    root = mkdtemp(name) ? name : "";
    for (Saved& s : saved) {
        const char* value = std::getenv(s.name);
        s.wasSet = value != nullptr;
        if (value) s.value = value;
    }
    setenv("HOME", root.c_str(), 1);
    setenv("XDG_DATA_HOME", dataHome().c_str(), 1);
    setenv("XDG_CONFIG_HOME", configHome().c_str(), 1);
}

PlayerHome::~PlayerHome() {
    for (const Saved& s : saved) {
        if (s.wasSet)
            setenv(s.name, s.value.c_str(), 1);
        else
            unsetenv(s.name);
    }
    // Directories a test made read-only are opened up first, so that they can be removed.
    if (!root.empty()) std::system(("chmod -R u+rwx '" + root + "' 2>/dev/null; rm -rf '" + root + "'").c_str());
}

} // namespace testing_support
