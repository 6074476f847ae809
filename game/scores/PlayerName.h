#pragma once
// The name a new entry of the scores table is given before the player types one: the login name.

#include <string>

class PlayerName {
public:
    PlayerName() = delete;

    // Given to a player whose login name has nothing a table name may hold.
    static const char* const FALLBACK;

    // The login name from the password database, then $USER, then FALLBACK.
    static std::string login();
    // The first of `passwdName` and `userVariable` that keeps a name once the characters a name
    // may not hold are dropped, it is cut to the longest name and its outer spaces trimmed;
    // FALLBACK when neither does.
    static std::string choose(const std::string& passwdName, const std::string& userVariable);
    // `text` without the characters a name may not hold, cut to the longest name, without outer
    // spaces; "" when nothing is left.
    static std::string clean(const std::string& text);
};
