// The command line: each option, combinations, and every kind of mistake with its message.

#include "game/desktop/CommandLine.h"

#include <initializer_list>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

// Parses `args` after the program's name.
struct Parsed {
    CommandLine::Outcome outcome;
    LaunchOptions options;
    std::string out, err;
};

Parsed parse(std::initializer_list<const char*> args,
             const char* program = "/usr/lib/games/nightvector/nightvector") {
    std::vector<std::string> words{program};
    for (const char* a : args) words.push_back(a);
    std::vector<char*> argv;
    for (std::string& w : words) argv.push_back(&w[0]);
    argv.push_back(nullptr);
    Parsed p;
    p.outcome = CommandLine::parse((int)words.size(), argv.data(), p.options, p.out, p.err);
    return p;
}

const std::string USAGE = "Usage: nightvector [OPTION]...\n"
                          "A real-time 2D space shooter.\n"
                          "\n"
                          "  --window          play in a 1280 x 720 window\n"
                          "  --fullscreen      play on the whole screen\n"
                          "  --frame-cap N     at most N frames a second where the display does not pace\n"
                          "                    them (0 for no cap; the display's refresh rate without it)\n"
                          "  --replay FILE     play the game kept in FILE, and exit at its end or on Escape\n"
                          "  -h, --help        show this help and exit\n"
                          "      --version     show the version and exit\n"
                          "\n"
                          "Without options the game starts as the settings say, on the whole screen unless they say\n"
                          "otherwise. The options hold for this run and are not saved.\n";

} // namespace

TEST(CommandLine, NoArgumentsRunTheGameAsAlways) {
    const Parsed p = parse({});
    EXPECT_EQ(p.outcome, CommandLine::RUN);
    EXPECT_EQ(p.options.display, LaunchOptions::DISPLAY_UNSET);
    EXPECT_EQ(p.options.frameCap, -1);
    EXPECT_EQ(p.out, "");
    EXPECT_EQ(p.err, "");
}

TEST(CommandLine, WindowAndFullscreenChooseTheDisplayAndTheLastOneCounts) {
    EXPECT_EQ(parse({"--window"}).options.display, LaunchOptions::DISPLAY_WINDOW);
    EXPECT_EQ(parse({"--fullscreen"}).options.display, LaunchOptions::DISPLAY_FULLSCREEN);
    EXPECT_EQ(parse({"--fullscreen", "--window"}).options.display, LaunchOptions::DISPLAY_WINDOW);
    EXPECT_EQ(parse({"--window", "--fullscreen"}).options.display, LaunchOptions::DISPLAY_FULLSCREEN);
    // Long options may be shortened while they stay unambiguous, as GNU programs allow.
    EXPECT_EQ(parse({"--win"}).options.display, LaunchOptions::DISPLAY_WINDOW);
    EXPECT_EQ(parse({"--window"}).outcome, CommandLine::RUN);
}

TEST(CommandLine, FrameCapTakesAWholeNumberFromZeroToAThousand) {
    EXPECT_EQ(parse({"--frame-cap", "30"}).options.frameCap, 30);
    EXPECT_EQ(parse({"--frame-cap=0"}).options.frameCap, 0);
    EXPECT_EQ(parse({"--frame-cap", "1000"}).options.frameCap, 1000);
    const Parsed both = parse({"--window", "--frame-cap", "144"});
    EXPECT_EQ(both.outcome, CommandLine::RUN);
    EXPECT_EQ(both.options.display, LaunchOptions::DISPLAY_WINDOW);
    EXPECT_EQ(both.options.frameCap, 144);
}

TEST(CommandLine, ABadFrameCapIsAMistakeThatSaysWhatIsNeeded) {
    for (const char* bad : {"-1", "abc", "1001", "", "12.5", "+5", " 5", "99999999999"}) {
        const Parsed p = parse({"--frame-cap", bad});
        EXPECT_EQ(p.outcome, CommandLine::EXIT_USAGE) << bad;
        EXPECT_EQ(p.err, std::string("nightvector: invalid frame cap '") + bad +
                             "': a whole number from 0 to 1000 is needed\n" + USAGE)
            << bad;
        EXPECT_EQ(p.out, "") << bad;
    }
    const Parsed missing = parse({"--frame-cap"});
    EXPECT_EQ(missing.outcome, CommandLine::EXIT_USAGE);
    EXPECT_EQ(missing.err, "nightvector: option '--frame-cap' needs a value\n" + USAGE);
}

TEST(CommandLine, ReplayNamesTheFileToPlay) {
    EXPECT_EQ(parse({}).options.replayFile, "");
    const Parsed p = parse({"--replay", "games/best.nvr", "--window"});
    EXPECT_EQ(p.outcome, CommandLine::RUN);
    EXPECT_EQ(p.options.replayFile, "games/best.nvr");
    EXPECT_EQ(p.options.display, LaunchOptions::DISPLAY_WINDOW);
    EXPECT_EQ(parse({"--replay=last.nvr"}).options.replayFile, "last.nvr");
    const Parsed missing = parse({"--replay"});
    EXPECT_EQ(missing.outcome, CommandLine::EXIT_USAGE);
    EXPECT_EQ(missing.err, "nightvector: option '--replay' needs a value\n" + USAGE);
    const Parsed empty = parse({"--replay", ""});
    EXPECT_EQ(empty.outcome, CommandLine::EXIT_USAGE);
    EXPECT_EQ(empty.err, "nightvector: option '--replay' needs a file\n" + USAGE);
}

TEST(CommandLine, HelpPrintsTheUsageOnStandardOutputAndExits) {
    for (const char* help : {"-h", "--help", "--he"}) {
        const Parsed p = parse({help});
        EXPECT_EQ(p.outcome, CommandLine::EXIT_OK) << help;
        EXPECT_EQ(p.out, USAGE) << help;
        EXPECT_EQ(p.err, "") << help;
    }
    // Help wins over the options around it.
    EXPECT_EQ(parse({"--window", "--help", "--fullscreen"}).outcome, CommandLine::EXIT_OK);
}

TEST(CommandLine, VersionPrintsTheNameAndTheVersionAndExits) {
    const Parsed p = parse({"--version"});
    EXPECT_EQ(p.outcome, CommandLine::EXIT_OK);
    EXPECT_EQ(p.out, std::string("nightvector ") + NIGHTVECTOR_VERSION + "\n");
    EXPECT_EQ(p.err, "");
}

TEST(CommandLine, AnUnknownOptionIsAMistakeWithTheUsageOnStandardError) {
    const Parsed p = parse({"--fly"});
    EXPECT_EQ(p.outcome, CommandLine::EXIT_USAGE);
    EXPECT_EQ(p.out, "");
    EXPECT_EQ(p.err, "nightvector: invalid option '--fly'\n" + USAGE);
    EXPECT_EQ(parse({"-x"}).err, "nightvector: invalid option '-x'\n" + USAGE);
    // A value given to an option that takes none.
    EXPECT_EQ(parse({"--window=yes"}).err, "nightvector: invalid option '--window=yes'\n" + USAGE);
    // The mistake wins over a help that comes after it.
    EXPECT_EQ(parse({"--fly", "--help"}).outcome, CommandLine::EXIT_USAGE);
}

TEST(CommandLine, DoubleDashEndsTheOptions) {
    EXPECT_EQ(parse({"--"}).outcome, CommandLine::RUN);
    EXPECT_EQ(parse({"--", "--window"}).err, "nightvector: unexpected argument '--window'\n" + USAGE);
}

TEST(CommandLine, AStrayArgumentIsAMistake) {
    const Parsed p = parse({"--window", "level2"});
    EXPECT_EQ(p.outcome, CommandLine::EXIT_USAGE);
    EXPECT_EQ(p.err, "nightvector: unexpected argument 'level2'\n" + USAGE);
}

TEST(CommandLine, TheProgramIsNamedWithoutItsDirectory) {
    EXPECT_EQ(parse({"--fly"}, "./nightvector").err.substr(0, 13), "nightvector: ");
    EXPECT_EQ(parse({"--fly"}, "nv").err.substr(0, 4), "nv: ");
    EXPECT_EQ(parse({"--fly"}, "").err.substr(0, 13), "nightvector: ");
    EXPECT_EQ(CommandLine::usage("nv").substr(0, 20), "Usage: nv [OPTION]..");
}

TEST(CommandLine, ASecondParseStartsFromTheFirstArgumentAgain) {
    parse({"--window", "--fullscreen"});
    EXPECT_EQ(parse({"--window"}).options.display, LaunchOptions::DISPLAY_WINDOW);
}
