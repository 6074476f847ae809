// Where the player's files go: the XDG base directories, and the fallbacks under HOME.

#include "engine/UserDirs.h"

#include <cstdlib>

#include <gtest/gtest.h>

#include "tests/support/PlayerHome.h"

using orvel::UserDirs;

TEST(UserDirs, TheXdgSettingsNameTheDataAndConfigHomes) {
    testing_support::PlayerHome home;
    setenv("XDG_DATA_HOME", "/somewhere/data", 1);
    setenv("XDG_CONFIG_HOME", "/somewhere/config", 1);
    EXPECT_EQ(UserDirs::dataHome(), "/somewhere/data");
    EXPECT_EQ(UserDirs::configHome(), "/somewhere/config");
}

TEST(UserDirs, UnsetEmptyOrRelativeSettingsFallBackUnderHome) {
    testing_support::PlayerHome home;
    setenv("HOME", "/home/pilot", 1);
    unsetenv("XDG_DATA_HOME");
    setenv("XDG_CONFIG_HOME", "", 1);
    EXPECT_EQ(UserDirs::dataHome(), "/home/pilot/.local/share");
    EXPECT_EQ(UserDirs::configHome(), "/home/pilot/.config");
    setenv("XDG_DATA_HOME", "relative/data", 1);
    EXPECT_EQ(UserDirs::dataHome(), "/home/pilot/.local/share");
}

TEST(UserDirs, WithoutAHomeThereIsNoPlace) {
    testing_support::PlayerHome home;
    unsetenv("HOME");
    unsetenv("XDG_DATA_HOME");
    unsetenv("XDG_CONFIG_HOME");
    EXPECT_EQ(UserDirs::dataHome(), "");
    EXPECT_EQ(UserDirs::configHome(), "");
}
