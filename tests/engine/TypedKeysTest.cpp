// Keys typed for text entry: recorded in order while entry is on, dropped while it is off, a full
// ring dropping the newest, and SDL's character translation following the switch.

#include "engine/TypedKeys.h"

#include <SDL/SDL.h>
#include <gtest/gtest.h>

using orvel::TypedKeys;

namespace {

class TypedKeysTest : public ::testing::Test {
protected:
    void SetUp() override { TypedKeys::enable(true); }
    void TearDown() override { TypedKeys::enable(false); }

    // Every key recorded and not taken yet, as "sym:character " each.
    static std::string takeAll() {
        std::string all;
        TypedKeys::Key key;
        while (TypedKeys::take(key)) all += std::to_string(key.sym) + ":" + std::to_string(key.character) + " ";
        return all;
    }
};

} // namespace

TEST_F(TypedKeysTest, KeysAreTakenInTheOrderTheyWereTyped) {
    TypedKeys::record(SDLK_a, 'A');
    TypedKeys::record(SDLK_MINUS, '-');
    TypedKeys::record(SDLK_BACKSPACE, 8);
    EXPECT_EQ(takeAll(), "97:65 45:45 8:8 ");
    EXPECT_EQ(takeAll(), "");
}

TEST_F(TypedKeysTest, NothingIsRecordedWhileEntryIsOff) {
    TypedKeys::enable(false);
    EXPECT_FALSE(TypedKeys::enabled());
    TypedKeys::record(SDLK_a, 'a');
    TypedKeys::enable(true);
    EXPECT_EQ(takeAll(), "");
}

TEST_F(TypedKeysTest, TurningEntryOnDropsWhatWasNotTaken) {
    TypedKeys::record(SDLK_w, 'w');
    TypedKeys::enable(true);
    TypedKeys::record(SDLK_x, 'x');
    EXPECT_EQ(takeAll(), "120:120 ");
}

TEST_F(TypedKeysTest, AFullRingDropsTheNewestKeysAndTakesMoreOnceEmptied) {
    for (unsigned i = 0; i < TypedKeys::CAPACITY + 5; ++i) TypedKeys::record((uint16_t)i, (uint16_t)i);
    unsigned taken = 0;
    TypedKeys::Key key;
    while (TypedKeys::take(key)) {
        EXPECT_EQ(key.sym, taken);
        ++taken;
    }
    EXPECT_EQ(taken, TypedKeys::CAPACITY);
    // Past the wrap of the ring's indices.
    TypedKeys::record(SDLK_z, 'z');
    EXPECT_EQ(takeAll(), "122:122 ");
}

TEST_F(TypedKeysTest, SdlTranslatesKeysToCharactersExactlyWhileEntryIsOn) {
    EXPECT_EQ(SDL_EnableUNICODE(-1), 1);
    TypedKeys::enable(false);
    EXPECT_EQ(SDL_EnableUNICODE(-1), 0);
}
