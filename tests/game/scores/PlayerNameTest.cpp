// The name a new entry gets before one is typed: the login name, made fit for the table.

#include "game/scores/PlayerName.h"

#include <cstdlib>
#include <pwd.h>
#include <unistd.h>

#include <gtest/gtest.h>

TEST(PlayerName, ThePasswordDatabaseNameComesFirst) { EXPECT_EQ(PlayerName::choose("alice", "bob"), "alice"); }

TEST(PlayerName, UserIsTakenWhenThePasswordDatabaseHasNoName) {
    EXPECT_EQ(PlayerName::choose("", "bob"), "bob");
    // A database name with nothing a name may hold counts as none.
    EXPECT_EQ(PlayerName::choose("...", "bob"), "bob");
}

TEST(PlayerName, PilotIsTakenWhenNeitherGivesAName) {
    EXPECT_EQ(PlayerName::choose("", ""), "Pilot");
    EXPECT_EQ(PlayerName::choose("@@", "  "), "Pilot");
}

TEST(PlayerName, CharactersANameMayNotHoldAreDroppedAndTheRestCutToTwelve) {
    EXPECT_EQ(PlayerName::choose("j.doe+games", ""), "jdoegames");
    EXPECT_EQ(PlayerName::choose("averyverylongloginname", ""), "averyverylon");
    EXPECT_EQ(PlayerName::choose(" two  words ", ""), "two  words");
}

TEST(PlayerName, TheLoginNameIsThePasswordDatabasesForThisUser) {
    const struct passwd* entry = getpwuid(getuid());
    ASSERT_NE(entry, nullptr);
    EXPECT_EQ(PlayerName::login(), PlayerName::choose(entry->pw_name, ""));
}
