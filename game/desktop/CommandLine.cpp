#include "game/desktop/CommandLine.h"

#include <cstring>
#include <getopt.h>

namespace {

enum OptionCode { OPTION_WINDOW = 256, OPTION_FULLSCREEN, OPTION_VERSION };

const struct option OPTIONS[] = {
    {"window", no_argument, nullptr, OPTION_WINDOW},
    {"fullscreen", no_argument, nullptr, OPTION_FULLSCREEN},
    {"help", no_argument, nullptr, 'h'},
    {"version", no_argument, nullptr, OPTION_VERSION},
    {nullptr, 0, nullptr, 0},
};

} // namespace

std::string CommandLine::version() { return std::string("nightvector ") + NIGHTVECTOR_VERSION; }

std::string CommandLine::usage(const char* program) {
    return std::string("Usage: ") + program +
           " [OPTION]...\n"
           "A real-time 2D space shooter.\n"
           "\n"
           "  --window          play in a 1280 x 720 window\n"
           "  --fullscreen      play on the whole screen\n"
           "  -h, --help        show this help and exit\n"
           "      --version     show the version and exit\n"
           "\n"
           "Without options the game starts on the whole screen.\n";
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
