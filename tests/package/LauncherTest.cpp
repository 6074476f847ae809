// The launcher of the unpacked Debian package, started like a player would start it, with a
// home directory of its own: where it puts the player's directory and its links, what the game
// prints and writes from there, and the exit status it passes on.

#include <climits>
#include <cstdlib>
#include <string>
#include <vector>

#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "tests/support/ResourceFiles.h"
#include "tests/support/GameProcess.h"

using e2e::GameProcess;
using e2e::Image;
using e2e::Surroundings;
using testing_support::loadingLines;

namespace e2e {

// The launcher of the unpacked package; the surroundings link the repository's data.
const char* const GAME_BINARY = NIGHTVECTOR_BINARY;
const char* const DATA_ROOT = REPOSITORY_ROOT;

} // namespace e2e

namespace {

// Where the package was unpacked (the root of its file tree).
const std::string ROOT = UNPACKED_ROOT;
const char* const DATA_FOLDERS[] = {"gfx", "sfx", "shaders"};

std::string realPath(const std::string& path) {
    char resolved[PATH_MAX];
    return realpath(path.c_str(), resolved) ? resolved : "";
}

// The installed folder a player's link should point at.
std::string installedData(const std::string& folder) {
    return realPath(ROOT + "/usr/share/games/nightvector") + "/" + folder;
}

// The target of the symbolic link at `path`; empty when it is not a link.
std::string linkTarget(const std::string& path) {
    char target[PATH_MAX];
    ssize_t n = readlink(path.c_str(), target, sizeof target - 1);
    return n < 0 ? "" : std::string(target, n);
}

bool isRealFolder(const std::string& path) {
    struct stat info;
    return lstat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

// A scratch directory: the launcher is started from it, with HOME in its `home` folder.
struct Player {
    Surroundings dir;
    std::string home = dir.path() + "/home";
    std::string own = home + "/.local/share/nightvector"; // the player's directory by default

    Player() { mkdir(home.c_str(), 0755); }
    std::vector<std::string> env(const std::vector<std::string>& more = {}) const {
        std::vector<std::string> all = {"HOME=" + home, "XDG_DATA_HOME="};
        all.insert(all.end(), more.begin(), more.end());
        return all;
    }
};

void makeFolders(const std::string& path) {
    std::string made;
    for (size_t at = 0; at != std::string::npos;) {
        size_t next = path.find('/', at + 1);
        made = path.substr(0, next);
        mkdir(made.c_str(), 0755);
        at = next;
    }
}

} // namespace

TEST(Launcher, StartsTheGameOnTheInstalledDataAndEscapeEndsItWithStatusZero) {
    Player player;
    GameProcess game(player.dir.path(), player.env());
    ASSERT_TRUE(game.waitForOutput("megabytes\n")) << game.output() << game.errors();
    EXPECT_EQ(game.output().rfind(loadingLines() + "Used texture memory: ", 0), 0u) << game.output();
    EXPECT_EQ(game.escapeAndWaitForExit(), 0);
}

TEST(Launcher, ScreenshotLandsInThePlayersDirectory) {
    Player player;
    GameProcess game(player.dir.path(), player.env());
    ASSERT_TRUE(game.waitForOutput("megabytes\n")) << game.output() << game.errors();
    e2e::pause(500);
    game.tapKey("F1");
    Image shot;
    bool written = false;
    for (int waited = 0; waited <= 20000 && !written; waited += 50) {
        written = e2e::loadBmp(player.own + "/screenshot_1.bmp", shot);
        if (!written) e2e::pause(50);
    }
    ASSERT_TRUE(written);
    EXPECT_EQ(shot.width, 1280);
    EXPECT_EQ(shot.height, 720);
    EXPECT_FALSE(player.dir.exists("screenshot_1.bmp"));
    EXPECT_EQ(game.escapeAndWaitForExit(), 0);
}

TEST(Launcher, PassesTheGamesExitStatusOnWithoutADisplay) {
    Player player;
    GameProcess game(player.dir.path(), player.env({"DISPLAY="}));
    EXPECT_EQ(game.waitForExit(), 1);
    EXPECT_EQ(game.errors(), "Error initializing SDL: No available video device\n");
    EXPECT_EQ(game.output(), "");
}

TEST(Launcher, LinksTheInstalledDataIntoThePlayersDirectory) {
    Player player;
    GameProcess game(player.dir.path(), player.env({"DISPLAY="}));
    ASSERT_EQ(game.waitForExit(), 1);
    for (const char* folder : DATA_FOLDERS)
        EXPECT_EQ(linkTarget(player.own + "/" + folder), installedData(folder)) << folder;
}

TEST(Launcher, RepointsLinksLeftByAnotherInstallation) {
    Player player;
    makeFolders(player.own);
    for (const char* folder : DATA_FOLDERS)
        ASSERT_EQ(
            symlink((std::string("/opt/elsewhere/") + folder).c_str(), (player.own + "/" + folder).c_str()),
            0);
    GameProcess game(player.dir.path(), player.env({"DISPLAY="}));
    ASSERT_EQ(game.waitForExit(), 1);
    for (const char* folder : DATA_FOLDERS)
        EXPECT_EQ(linkTarget(player.own + "/" + folder), installedData(folder)) << folder;
}

TEST(Launcher, UsesXdgDataHomeWhenItIsAnAbsolutePath) {
    Player player;
    std::string data = player.dir.path() + "/data";
    GameProcess game(player.dir.path(), player.env({"DISPLAY=", "XDG_DATA_HOME=" + data}));
    ASSERT_EQ(game.waitForExit(), 1);
    EXPECT_EQ(linkTarget(data + "/nightvector/gfx"), installedData("gfx"));
    EXPECT_FALSE(player.dir.exists("home/.local"));
}

TEST(Launcher, IgnoresARelativeXdgDataHome) {
    Player player;
    GameProcess game(player.dir.path(), player.env({"DISPLAY=", "XDG_DATA_HOME=data"}));
    ASSERT_EQ(game.waitForExit(), 1);
    EXPECT_EQ(linkTarget(player.own + "/gfx"), installedData("gfx"));
    EXPECT_FALSE(player.dir.exists("data"));
}

TEST(Launcher, LeavesAPlayersOwnDataFolderAloneAndSaysSo) {
    Player player;
    makeFolders(player.own + "/shaders");
    GameProcess game(player.dir.path(), player.env({"DISPLAY="}));
    ASSERT_EQ(game.waitForExit(), 1);
    EXPECT_TRUE(isRealFolder(player.own + "/shaders"));
    EXPECT_EQ(game.errors(), "nightvector: using " + player.own + "/shaders instead of " +
                                 installedData("shaders") +
                                 "\nError initializing SDL: No available video device\n");
}
