// Typing a name into the table: the default kept or replaced, Backspace, the characters a name may
// hold, the longest name, and Return.

#include "game/scores/NameEntry.h"

#include <SDL/SDL_keysym.h>
#include <gtest/gtest.h>

namespace {

// Types each character of `text` as the key that types it.
bool typeText(NameEntry& entry, const char* text) {
    bool confirmed = false;
    for (const char* c = text; *c; ++c) {
        const int key = *c >= 'A' && *c <= 'Z' ? *c - 'A' + 'a' : *c;
        confirmed = entry.type(key, (uint16_t)*c) || confirmed;
    }
    return confirmed;
}

} // namespace

TEST(NameEntry, TheDefaultShowsAndIsKeptWhenNothingIsTyped) {
    NameEntry entry("alice");
    EXPECT_EQ(entry.text(), "alice");
    EXPECT_FALSE(entry.edited());
    EXPECT_TRUE(entry.type(SDLK_RETURN, '\r'));
    EXPECT_EQ(entry.name(), "alice");
}

TEST(NameEntry, TheFirstCharacterTypedReplacesTheDefault) {
    NameEntry entry("alice");
    EXPECT_FALSE(typeText(entry, "Bo"));
    EXPECT_EQ(entry.text(), "Bo");
    EXPECT_TRUE(entry.edited());
    EXPECT_EQ(entry.name(), "Bo");
}

TEST(NameEntry, BackspaceTakesTheLastCharacterOffTheDefaultOrTheTypedName) {
    NameEntry entry("alice");
    entry.type(SDLK_BACKSPACE, '\b');
    EXPECT_EQ(entry.text(), "alic");
    // An edited default is built on, not replaced.
    typeText(entry, "e2");
    EXPECT_EQ(entry.text(), "alice2");
    for (int i = 0; i < 10; ++i) entry.type(SDLK_BACKSPACE, '\b');
    EXPECT_EQ(entry.text(), "");
}

TEST(NameEntry, AnEmptyOrBlankNameGivesTheDefault) {
    NameEntry entry("alice");
    typeText(entry, "   ");
    EXPECT_EQ(entry.text(), "   ");
    EXPECT_EQ(entry.name(), "alice");
    for (int i = 0; i < 3; ++i) entry.type(SDLK_BACKSPACE, '\b');
    EXPECT_EQ(entry.name(), "alice");
}

TEST(NameEntry, OuterSpacesAreTrimmedFromTheName) {
    NameEntry entry("alice");
    typeText(entry, "  Ace Pilot ");
    EXPECT_EQ(entry.text(), "  Ace Pilot ");
    EXPECT_EQ(entry.name(), "Ace Pilot");
}

TEST(NameEntry, LettersDigitsSpaceDashAndUnderscoreAreTakenAndNothingElse) {
    NameEntry entry("alice");
    typeText(entry, "a-Z_9 !\t\"%/.");
    EXPECT_EQ(entry.text(), "a-Z_9 ");
    // A key that types no character, or one beyond ASCII, is ignored too.
    entry.type(SDLK_LSHIFT, 0);
    entry.type(SDLK_e, 0xe9);
    entry.type(SDLK_ESCAPE, 27);
    EXPECT_EQ(entry.text(), "a-Z_9 ");
}

TEST(NameEntry, NoMoreThanTwelveCharactersAreTaken) {
    NameEntry entry("alice");
    typeText(entry, "abcdefghijklmnop");
    EXPECT_EQ(entry.text(), "abcdefghijkl");
    entry.type(SDLK_BACKSPACE, '\b');
    typeText(entry, "XY");
    EXPECT_EQ(entry.text(), "abcdefghijkX");
}

TEST(NameEntry, KeypadEnterConfirmsAsReturnDoes) {
    NameEntry entry("alice");
    typeText(entry, "Zed");
    EXPECT_TRUE(entry.type(SDLK_KP_ENTER, '\r'));
    EXPECT_EQ(entry.name(), "Zed");
}
