#pragma once
// The program's command line, GNU style: --window, --fullscreen, --frame-cap N, --replay FILE,
// --help and --version. With no arguments the game starts as it always has.

#include <string>

// What the command line asks of this run.
struct LaunchOptions {
    enum Display {
        DISPLAY_UNSET,      // as the settings say, full screen without them
        DISPLAY_WINDOW,     // a 1280 x 720 window
        DISPLAY_FULLSCREEN, // the whole screen
    };
    Display display = DISPLAY_UNSET;
    // Frames a second at most where the display does not pace them, 0 for no cap; -1 when the
    // command line does not say.
    int frameCap = -1;
    // A replay to play instead of the game; "" for none.
    std::string replayFile;
};

class CommandLine {
public:
    // What the program does after reading its command line.
    enum Outcome {
        RUN,        // start the game
        EXIT_OK,    // --help or --version answered: exit 0
        EXIT_USAGE, // a mistake on the command line: exit 2, nothing started
    };
    static const int USAGE_STATUS = 2;

    CommandLine() = delete;

    // Reads `argv`. `out` receives what goes to standard output (the usage for --help, the
    // version), `err` what goes to standard error (the mistake and the usage).
    static Outcome parse(int argc, char** argv, LaunchOptions& options, std::string& out, std::string& err);
    // The usage text, naming the program `program`.
    static std::string usage(const char* program);
    // "nightvector " and the version.
    static std::string version();
};
