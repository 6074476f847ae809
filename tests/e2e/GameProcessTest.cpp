// The real game as the end-to-end tests start it. A game that dies from a signal is a crash,
// told apart from a normal exit and written to the crash ledger with the name of the test that
// saw it; a game ended by the test's own kill is not. Every game a test starts keeps its
// player's files in the test's own directory, and is driven on the X server it was given.

#include <csignal>
#include <cstdlib>
#include <fstream>
#include <map>
#include <sstream>
#include <string>

#include <unistd.h>

#include <gtest/gtest.h>

#include "tests/support/GameProcess.h"

using e2e::GameProcess;
using e2e::Surroundings;

namespace {

// Points the ledger at a file of the test's own for its lifetime, and puts the old setting back.
class OwnLedger {
public:
    explicit OwnLedger(const std::string& path) : path(path) {
        const char* old = std::getenv("NIGHTVECTOR_CRASH_LEDGER");
        hadOld = old != nullptr;
        if (old) oldValue = old;
        setenv("NIGHTVECTOR_CRASH_LEDGER", path.c_str(), 1);
        unlink(path.c_str());
    }
    ~OwnLedger() {
        if (hadOld)
            setenv("NIGHTVECTOR_CRASH_LEDGER", oldValue.c_str(), 1);
        else
            unsetenv("NIGHTVECTOR_CRASH_LEDGER");
        unlink(path.c_str());
    }
    std::string text() const {
        std::ifstream in(path);
        std::stringstream all;
        all << in.rdbuf();
        return all.str();
    }

private:
    std::string path;
    bool hadOld = false;
    std::string oldValue;
};

} // namespace

TEST(CrashLedger, AGameEndedBySegmentationFaultIsACrashInTheLedger) {
    Surroundings dir;
    dir.linkData();
    OwnLedger ledger(dir.path() + "/ledger.txt");
    GameProcess game(dir.path());
    ASSERT_TRUE(game.waitForOutput("megabytes\n"));
    kill(game.processId(), SIGSEGV);
    EXPECT_EQ(game.waitForExit(), -1);
    EXPECT_EQ(game.signal(), SIGSEGV);
    const std::string text = ledger.text();
    EXPECT_EQ(text.rfind("CrashLedger.AGameEndedBySegmentationFaultIsACrashInTheLedger: the game (pid " +
                             std::to_string(game.processId()) + ") died from signal 11 (Segmentation fault) in " +
                             dir.path() + "; its standard error:\n",
                         0),
              0u)
        << text;
}

TEST(CrashLedger, ANormalExitAndTheTestsOwnKillLeaveTheLedgerEmpty) {
    Surroundings dir;
    dir.linkData();
    OwnLedger ledger(dir.path() + "/ledger.txt");
    {
        GameProcess game(dir.path());
        ASSERT_TRUE(game.waitForOutput("megabytes\n"));
        EXPECT_EQ(game.escapeAndWaitForExit(), 0);
        EXPECT_EQ(game.signal(), 0);
    }
    {
        GameProcess killed(dir.path());
        ASSERT_TRUE(killed.waitForOutput("megabytes\n"));
    }
    EXPECT_EQ(ledger.text(), "");
}

TEST(GameProcessHome, TheGameRunsWithAHomeAndPlayerDirectoriesOfTheTestsOwn) {
    Surroundings dir;
    dir.linkData();
    GameProcess game(dir.path());
    ASSERT_TRUE(game.waitForOutput("megabytes\n"));
    std::ifstream in("/proc/" + std::to_string(game.processId()) + "/environ", std::ios::binary);
    std::map<std::string, std::string> env;
    std::string variable;
    while (std::getline(in, variable, '\0')) {
        const size_t eq = variable.find('=');
        if (eq != std::string::npos) env[variable.substr(0, eq)] = variable.substr(eq + 1);
    }
    EXPECT_EQ(env["HOME"], dir.path() + "/home");
    EXPECT_EQ(env["XDG_DATA_HOME"], dir.path() + "/home/data");
    EXPECT_EQ(env["XDG_CONFIG_HOME"], dir.path() + "/home/config");
    EXPECT_EQ(game.escapeAndWaitForExit(), 0);
}

TEST(GameProcessDisplay, TheGamesXServerIsTheOneItWasGivenOrElseOurOwn) {
    Surroundings dir;
    const char* ours = std::getenv("DISPLAY");
    ASSERT_NE(ours, nullptr);
    GameProcess inherited(dir.path(), {}, {"--version"});
    EXPECT_EQ(inherited.display(), ours);
    EXPECT_EQ(inherited.waitForExit(), 0);
    GameProcess given(dir.path(), {"DISPLAY=:97"}, {"--version"});
    EXPECT_EQ(given.display(), ":97");
    EXPECT_EQ(given.waitForExit(), 0);
}
