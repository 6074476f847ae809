#include "game/scores/PlayerName.h"

#include <cstdlib>
#include <pwd.h>
#include <unistd.h>

#include "game/scores/ScoreTable.h"

const char* const PlayerName::FALLBACK = "Pilot";

std::string PlayerName::clean(const std::string& text) {
    std::string name;
    for (char c : text)
        if (ScoreTable::isNameCharacter(c) && !(name.empty() && c == ' ')) name += c;
    if (name.size() > ScoreTable::NAME_MAX) name.resize(ScoreTable::NAME_MAX);
    while (!name.empty() && name.back() == ' ') name.pop_back();
    return name;
}

std::string PlayerName::choose(const std::string& passwdName, const std::string& userVariable) {
    std::string name = clean(passwdName);
    if (name.empty()) name = clean(userVariable);
    return name.empty() ? FALLBACK : name;
}

std::string PlayerName::login() {
    std::string passwdName;
    const struct passwd* entry = getpwuid(getuid());
    if (entry && entry->pw_name) passwdName = entry->pw_name;
    const char* user = getenv("USER");
    return choose(passwdName, user ? user : "");
}
