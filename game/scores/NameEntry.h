#pragma once
// Typing the name of a new entry in the scores table: the default shown first, replaced by the
// first character typed; Backspace takes the last character off; Return confirms.

#include <cstdint>
#include <string>

class NameEntry {
public:
    // `defaultName` is shown and kept when the player types nothing.
    explicit NameEntry(const std::string& defaultName);

    // One key press: its SDL key symbol and the character it types (0 for none). Characters a
    // name may not hold, and any beyond the longest name, are ignored. True when it confirms the
    // name (Return or keypad Enter).
    bool type(int sym, uint16_t character);

    // What is shown while typing.
    const std::string& text() const { return typed; }
    // The name to keep: the text without outer spaces, or the default when nothing is left.
    std::string name() const;
    // Whether the player changed the default.
    bool edited() const { return changed; }

private:
    std::string fallback;
    std::string typed;
    bool changed;
};
