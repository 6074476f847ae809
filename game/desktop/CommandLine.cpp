#include "game/desktop/CommandLine.h"

#include <cstdlib>
#include <cstring>
#include <getopt.h>

#include "game/desktop/Settings.h"

namespace {

enum OptionCode { OPTION_WINDOW = 256, OPTION_FULLSCREEN, OPTION_FRAME_CAP, OPTION_REPLAY, OPTION_VERSION };

const struct option OPTIONS[] = {
    {"window", no_argument, nullptr, OPTION_WINDOW},
    {"fullscreen", no_argument, nullptr, OPTION_FULLSCREEN},
    {"frame-cap", required_argument, nullptr, OPTION_FRAME_CAP},
    {"replay", required_argument, nullptr, OPTION_REPLAY},
    {"help", no_argument, nullptr, 'h'},
    {"version", no_argument, nullptr, OPTION_VERSION},
    {nullptr, 0, nullptr, 0},
};

// A whole number from 0 to Settings::FRAME_CAP_MAX in decimal digits alone.
bool readFrameCap(const char* text, int& cap) {
    const size_t length = strlen(text);
    if (length == 0 || length > 4 || strspn(text, "0123456789") != length) return false;
    const int value = atoi(text);
    if (value > Settings::FRAME_CAP_MAX) return false;
    cap = value;
    return true;
}

} // namespace

std::string CommandLine::version() { return std::string("nightvector ") + NIGHTVECTOR_VERSION; }

std::string CommandLine::usage(const char* program) {
    return std::string("Usage: ") + program +
           " [OPTION]...\n"
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
}

CommandLine::Outcome CommandLine::parse(int argc, char** argv, LaunchOptions& options, std::string& out,
                                        std::string& err) {
    options = LaunchOptions();
    // The name the program was started by, without its directory: the launcher starts it by a
    // long path.
    const char* program = argc > 0 && argv[0] && *argv[0] ? argv[0] : "nightvector";
    if (const char* slash = strrchr(program, '/')) program = slash[1] ? slash + 1 : program;
    // getopt keeps its place in globals: a parse starts from the first argument again, and says
    // nothing itself, so that the messages go where the caller sends them.
    optind = 0;
    opterr = 0;
    std::string mistake;
    int code;
    while (mistake.empty() && (code = getopt_long(argc, argv, ":h", OPTIONS, nullptr)) != -1) {
        switch (code) {
        case OPTION_WINDOW:
            options.display = LaunchOptions::DISPLAY_WINDOW;
            break;
        case OPTION_FULLSCREEN:
            options.display = LaunchOptions::DISPLAY_FULLSCREEN;
            break;
        case OPTION_FRAME_CAP:
            if (!readFrameCap(optarg, options.frameCap))
                mistake = std::string("invalid frame cap '") + optarg + "': a whole number from 0 to " +
                          std::to_string(Settings::FRAME_CAP_MAX) + " is needed";
            break;
        case OPTION_REPLAY:
            if (!*optarg) mistake = "option '--replay' needs a file";
            options.replayFile = optarg;
            break;
        case ':':
            mistake = std::string("option '") + argv[optind - 1] + "' needs a value";
            break;
        case 'h':
            out = usage(program);
            return EXIT_OK;
        case OPTION_VERSION:
            out = version() + "\n";
            return EXIT_OK;
        default:
            mistake = std::string("invalid option '") + argv[optind - 1] + "'";
            break;
        }
    }
    if (mistake.empty() && optind < argc) mistake = std::string("unexpected argument '") + argv[optind] + "'";
    if (mistake.empty()) return RUN;
    err = std::string(program) + ": " + mistake + "\n" + usage(program);
    return EXIT_USAGE;
}
