#pragma once
// The real game as a child process: its own working directory, standard output and error in
// files there, driven through its X server like a player would.

#include <string>
#include <utility>
#include <vector>

namespace e2e {

// The program GameProcess starts, and the repository whose gfx/, sfx/ and shaders/ Surroundings
// links; each test program defines both.
extern const char* const GAME_BINARY;
extern const char* const DATA_ROOT;

// A working directory for one run: gfx/, sfx/ and shaders/ linked from the repository unless
// left out, removed again when the object goes.
class Surroundings {
public:
    Surroundings();
    ~Surroundings();
    Surroundings(const Surroundings&) = delete;
    Surroundings& operator=(const Surroundings&) = delete;

    const std::string& path() const { return dir; }
    // Links the repository's folder `name` into the directory.
    void linkFolder(const std::string& name);
    // Links gfx/, sfx/ and shaders/: everything the game reads.
    void linkData();
    // A real folder `name` holding links to every file of the repository's folder except `skip`.
    void linkFolderExcept(const std::string& name, const std::string& skip);
    // Writes `bytes` to the relative path `file`.
    void writeFile(const std::string& file, const std::string& bytes);
    bool exists(const std::string& file) const;

private:
    std::string dir;
};

struct Image;

class GameProcess {
public:
    // Starts the game in `workingDir` with `env` ("NAME=value"; "NAME=" unsets NAME) added to this
    // process's environment and `args` on its command line. SDL_AUDIODRIVER is "dummy", HOME is
    // `workingDir`/home with the data and config homes inside it, and XDG_CACHE_HOME the caller's
    // cache, unless env sets them. Keys, buttons, the pointer and window searches go to the X
    // server the game was given: env's DISPLAY, else this process's.
    GameProcess(const std::string& workingDir, const std::vector<std::string>& env = {},
                const std::vector<std::string>& args = {});
    ~GameProcess();
    GameProcess(const GameProcess&) = delete;
    GameProcess& operator=(const GameProcess&) = delete;

    std::string output() const; // standard output so far
    std::string errors() const; // standard error so far
    // Waits until standard output holds `text`; false when the process ended or time ran out.
    bool waitForOutput(const std::string& text, int timeoutMs = 60000);
    // Waits for the process to end; its exit status, or -1 after a signal or when time ran out.
    int waitForExit(int timeoutMs = 30000);
    bool isRunning();
    // The signal that ended the process (SIGSEGV, SIGABRT, ...), 0 while it runs or after a
    // normal exit. A game that dies from a signal has crashed: the death is also written to the
    // crash ledger (below), which a second run of the test cannot wipe out.
    int signal() const { return endSignal; }
    // A death from `signal` that the test itself causes: not a crash, and not in the ledger.
    void expectDeathBy(int signal) { expectedSignal = signal; }
    // The game's process id.
    int processId() const { return pid; }
    // The X server the game was started on (":N").
    const std::string& display() const { return xDisplay; }

    // Holds a key (xdotool key name) down long enough for several frames to see it, then lets go.
    void tapKey(const std::string& key);
    // Holds `key` for half a second. The game samples the keyboard once a frame, so a shorter
    // press can fall between two frames when one of them runs long.
    void holdKey(const std::string& key);
    void pressKey(const std::string& key);
    void releaseKey(const std::string& key);
    void pressButton(int button);
    void releaseButton(int button);
    // Moves the pointer to (x, y) on the screen, which the game's window covers from its top left.
    void moveMouse(int x, int y);
    // The game's top-level X window, found by its caption; 0 when there is none.
    unsigned long window();
    // Takes a screenshot with F1 and waits for the file `name` to be complete.
    bool screenshot(const std::string& name, int timeoutMs = 20000);
    // The same, then reads the file into `image`; false when either step failed.
    bool screenshot(const std::string& name, Image& image);
    // Holds Escape, which ends the game from any screen, until the game has ended or waitForExit()
    // gives up, and returns its status.
    int escapeAndWaitForExit();

private:
    std::string dir;
    std::string xDisplay;
    int pid;
    int status;
    int endSignal;
    int expectedSignal;
    bool ended;
    std::string readFile(const std::string& name) const;
    void reaped(int waitStatus);
    bool xdotool(const std::string& args) const;
};

// Appends one line about a crash to the file NIGHTVECTOR_CRASH_LEDGER names, if it names one.
// The end-to-end run checks that file once all of its tests are done, so that a crash fails the
// run even when the test that saw it passes on its second try.
void recordCrash(const std::string& line);

// A BMP read back as packed 0xRRGGBB pixels, top row first.
struct Image {
    // The colour the game clears its screen to.
    static constexpr unsigned BACKGROUND = 0x000000;

    int width = 0, height = 0;
    std::vector<unsigned> pixels;
    unsigned at(int x, int y) const { return pixels[(size_t)y * width + x]; }
    // Columns of non-background pixels in rows [y0, y1): first and last, or -1 when none.
    std::pair<int, int> inkColumns(int y0, int y1) const;
    // Whether any pixel of the rectangle [x0, x1) x [y0, y1) differs from the background.
    bool hasInk(int x0, int y0, int x1, int y1) const;
};
bool loadBmp(const std::string& path, Image& image);

// Sleeps `ms` milliseconds.
void pause(int ms);
// What the shell command `command` writes to standard output.
std::string commandOutput(const std::string& command);
// The whole positive number the environment variable `variable` holds; `fallback` when it is
// unset or holds anything else.
int positiveSetting(const char* variable, int fallback);

} // namespace e2e
