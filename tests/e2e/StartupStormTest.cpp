// The real program started many times over to its intro and quit again, with another X client
// reading the whole screen every 2 ms beside it, and every fourth time another OpenGL program's
// window opening over the intro and closing again. A crash at start-up is rare and depends on
// timing, so only many starts can show it: every start must reach the intro and end with status 0.
// NIGHTVECTOR_STARTUP_STORM_STARTS sets the number of starts (default 30); the soak runs 300.

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string>

#include <gtest/gtest.h>

#include "tests/support/GameProcess.h"
#include "tests/support/ScreenReader.h"
#include "tests/support/XDriver.h"

using e2e::GameProcess;
using e2e::Surroundings;

namespace {

const int DEFAULT_STARTS = 30;
// The longest time a start may stay at the intro before it quits; each start stays a different
// share of it, so that the quits fall at many moments after loading.
const int LONGEST_STAY_MS = 1500;

int starts() { return e2e::positiveSetting("NIGHTVECTOR_STARTUP_STORM_STARTS", DEFAULT_STARTS); }

enum class Outcome { Clean, Crashed, Failed };

// One start: to the intro, a stay there, then out by Escape, by the window's close button or by
// the terminate signal a desktop's logout sends, in turn.
Outcome startAndQuit(const Surroundings& dir, int number, std::string& report) {
    GameProcess game(dir.path());
    const bool atIntro = game.waitForOutput("megabytes\n");
    int status = -1;
    int otherStatus = 0;
    if (atIntro) {
        // Blocks while the other window is open: the game sits under it at the intro.
        if (number % 4 == 0) otherStatus = std::system(OTHER_WINDOW_BINARY " 600 >/dev/null 2>&1");
        e2e::pause(number * 613 % LONGEST_STAY_MS);
        const unsigned long window = game.window();
        if (number % 3 == 1 && window != 0) {
            xdriver::requestClose(window);
            status = game.waitForExit();
        } else if (number % 3 == 2) {
            kill(game.processId(), SIGTERM);
            status = game.waitForExit();
        } else {
            status = game.escapeAndWaitForExit();
        }
    } else {
        status = game.waitForExit();
    }
    if (game.signal() != 0) {
        report += "start " + std::to_string(number) + ": signal " + std::to_string(game.signal()) + "\n" +
                  game.errors();
        return Outcome::Crashed;
    }
    if (otherStatus != 0) {
        report += "start " + std::to_string(number) + ": the other window's program ended with " +
                  std::to_string(otherStatus) + "\n";
        return Outcome::Failed;
    }
    if (!atIntro || status != 0) {
        report += "start " + std::to_string(number) + ": " + (atIntro ? "" : "no intro, ") + "status " +
                  std::to_string(status) + "\n" + game.errors();
        return Outcome::Failed;
    }
    return Outcome::Clean;
}

} // namespace

TEST(StartupStorm, EveryStartReachesTheIntroAndQuitsWithStatusZero) {
    Surroundings dir;
    dir.linkData();
    e2e::ScreenReader reader;
    const int total = starts();
    int crashes = 0, failures = 0;
    std::string report;
    for (int number = 1; number <= total; ++number) {
        switch (startAndQuit(dir, number, report)) {
        case Outcome::Crashed: ++crashes; break;
        case Outcome::Failed: ++failures; break;
        case Outcome::Clean: break;
        }
    }
    std::printf("Startup storm: %d starts, %d crashes, %d other failures, %ld screen reads beside them\n", total,
                crashes, failures, reader.reads());
    EXPECT_EQ(crashes, 0) << report;
    EXPECT_EQ(failures, 0) << report;
    EXPECT_GT(reader.reads(), 0);
}
