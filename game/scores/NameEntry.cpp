#include "game/scores/NameEntry.h"

#include <SDL/SDL_keysym.h>

#include "game/scores/PlayerName.h"
#include "game/scores/ScoreTable.h"

NameEntry::NameEntry(const std::string& defaultName) : fallback(defaultName), typed(defaultName), changed(false) {}

bool NameEntry::type(int sym, uint16_t character) {
    if (sym == SDLK_RETURN || sym == SDLK_KP_ENTER) return true;
    if (sym == SDLK_BACKSPACE) {
        if (!typed.empty()) typed.pop_back();
        changed = true;
        return false;
    }
    if (character == 0 || character > 127 || !ScoreTable::isNameCharacter((char)character)) return false;
    // The default goes with the first character typed: most players type a name of their own.
    if (!changed) typed.clear();
    changed = true;
    if (typed.size() < ScoreTable::NAME_MAX) typed += (char)character;
    return false;
}

std::string NameEntry::name() const {
    const std::string name = PlayerName::clean(typed);
    return name.empty() ? fallback : name;
}
