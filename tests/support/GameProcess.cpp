#include "tests/support/GameProcess.h"

#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>

#include <dirent.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <SDL/SDL.h>
#include <gtest/gtest.h>

#include "tests/support/XDriver.h"

namespace e2e {

namespace {

const char* const CAPTION = "Nightvector - Unfinished CVC '11 version";

} // namespace

void pause(int ms) { usleep(ms * 1000); }

std::string commandOutput(const std::string& command) {
    std::string out;
    if (FILE* pipe = popen(command.c_str(), "r")) {
        char buffer[256];
        while (fgets(buffer, sizeof buffer, pipe)) out += buffer;
        pclose(pipe);
    }
    return out;
}

int positiveSetting(const char* variable, int fallback) {
    const char* text = std::getenv(variable);
    if (!text) return fallback;
    char* end = nullptr;
    const long n = std::strtol(text, &end, 10);
    return end != text && *end == '\0' && n > 0 && n <= 1000000000 ? (int)n : fallback;
}

Surroundings::Surroundings() {
    char name[] = "/tmp/nightvector-e2e-XXXXXX";
    dir = mkdtemp(name) ? name : "";
}

Surroundings::~Surroundings() {
    if (!dir.empty()) commandOutput("rm -rf '" + dir + "'");
}

void Surroundings::linkFolder(const std::string& name) {
    symlink((std::string(DATA_ROOT) + "/" + name).c_str(), (dir + "/" + name).c_str());
}

void Surroundings::linkFolderExcept(const std::string& name, const std::string& skip) {
    std::string from = std::string(DATA_ROOT) + "/" + name;
    mkdir((dir + "/" + name).c_str(), 0755);
    if (DIR* d = opendir(from.c_str())) {
        while (dirent* entry = readdir(d)) {
            std::string file = entry->d_name;
            if (file == "." || file == ".." || file == skip) continue;
            symlink((from + "/" + file).c_str(), (dir + "/" + name + "/" + file).c_str());
        }
        closedir(d);
    }
}

void Surroundings::writeFile(const std::string& file, const std::string& bytes) {
    std::ofstream out(dir + "/" + file, std::ios::binary);
    out << bytes;
}

void Surroundings::linkData() {
    linkFolder("gfx");
    linkFolder("sfx");
    linkFolder("shaders");
}

bool Surroundings::exists(const std::string& file) const { return access((dir + "/" + file).c_str(), F_OK) == 0; }

GameProcess::GameProcess(const std::string& workingDir, const std::vector<std::string>& env,
                         const std::vector<std::string>& args)
    : dir(workingDir), pid(-1), status(-1), endSignal(0), expectedSignal(0), ended(false) {
    const char* inherited = std::getenv("DISPLAY");
    xDisplay = inherited ? inherited : "";
    for (const std::string& assignment : env)
        if (assignment.rfind("DISPLAY=", 0) == 0) xDisplay = assignment.substr(8);
    // Emptied here, before the child exists: a run in a directory used before must not show the
    // last run's output to a caller that starts waiting for it at once.
    const int out = open((dir + "/stdout.txt").c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    const int err = open((dir + "/stderr.txt").c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    // The player's files of this run go into its own directory, never into those of whoever runs
    // the tests; the GL driver's shader cache stays where it was, so that starts stay as quick.
    const char* cache = std::getenv("XDG_CACHE_HOME");
    const char* realHome = std::getenv("HOME");
    const std::string cacheHome = cache && cache[0] == '/' ? cache : std::string(realHome ? realHome : "/tmp") + "/.cache";
    const std::string home = dir + "/home";
    // The argument vector is made before the fork: the child only execs.
    std::vector<std::string> words{GAME_BINARY};
    words.insert(words.end(), args.begin(), args.end());
    std::vector<char*> argv;
    for (std::string& word : words) argv.push_back(&word[0]);
    argv.push_back(nullptr);
    pid = fork();
    if (pid == 0) {
        if (chdir(dir.c_str()) != 0) _exit(126);
        setenv("SDL_AUDIODRIVER", "dummy", 1);
        setenv("HOME", home.c_str(), 1);
        setenv("XDG_DATA_HOME", (home + "/data").c_str(), 1);
        setenv("XDG_CONFIG_HOME", (home + "/config").c_str(), 1);
        setenv("XDG_CACHE_HOME", cacheHome.c_str(), 1);
        for (const std::string& assignment : env) {
            size_t eq = assignment.find('=');
            std::string name = assignment.substr(0, eq), value = assignment.substr(eq + 1);
            if (value.empty())
                unsetenv(name.c_str());
            else
                setenv(name.c_str(), value.c_str(), 1);
        }
        dup2(out, 1);
        dup2(err, 2);
        execv(GAME_BINARY, argv.data());
        _exit(127);
    }
    if (out >= 0) close(out);
    if (err >= 0) close(err);
}

GameProcess::~GameProcess() {
    // Our own kill is no crash: the child is reaped here without a look at how it ended.
    if (pid > 0 && isRunning()) {
        kill(pid, SIGKILL);
        waitpid(pid, nullptr, 0);
    }
}

void recordCrash(const std::string& line) {
    const char* ledger = std::getenv("NIGHTVECTOR_CRASH_LEDGER");
    if (!ledger || !*ledger) return;
    std::ofstream out(ledger, std::ios::app);
    out << line << '\n';
}

void GameProcess::reaped(int waitStatus) {
    ended = true;
    status = WIFEXITED(waitStatus) ? WEXITSTATUS(waitStatus) : -1;
    if (!WIFSIGNALED(waitStatus)) return;
    endSignal = WTERMSIG(waitStatus);
    if (endSignal == expectedSignal) return;
    const ::testing::TestInfo* test = ::testing::UnitTest::GetInstance()->current_test_info();
    std::string name = test ? std::string(test->test_suite_name()) + "." + test->name() : "outside a test";
    std::string errors = this->errors();
    // Enough for the game's own report of the signal with a whole stack.
    if (errors.size() > 8000) errors = "..." + errors.substr(errors.size() - 8000);
    recordCrash(name + ": the game (pid " + std::to_string(pid) + ") died from signal " + std::to_string(endSignal) +
                " (" + strsignal(endSignal) + ") in " + dir + "; its standard error:\n" + errors);
}

std::string GameProcess::readFile(const std::string& name) const {
    std::ifstream in(dir + "/" + name, std::ios::binary);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

std::string GameProcess::output() const { return readFile("stdout.txt"); }
std::string GameProcess::errors() const { return readFile("stderr.txt"); }

bool GameProcess::isRunning() {
    if (ended || pid <= 0) return false;
    int s = 0;
    if (waitpid(pid, &s, WNOHANG) == pid) {
        reaped(s);
        return false;
    }
    return true;
}

bool GameProcess::waitForOutput(const std::string& text, int timeoutMs) {
    for (int waited = 0; waited <= timeoutMs; waited += 20) {
        if (output().find(text) != std::string::npos) return true;
        if (!isRunning()) return output().find(text) != std::string::npos;
        pause(20);
    }
    return false;
}

int GameProcess::waitForExit(int timeoutMs) {
    for (int waited = 0; waited <= timeoutMs; waited += 20) {
        if (!isRunning()) return status;
        pause(20);
    }
    return -1;
}

bool GameProcess::screenshot(const std::string& name, Image& image) {
    return screenshot(name) && loadBmp(dir + "/" + name, image);
}

int GameProcess::escapeAndWaitForExit() {
    // Held until the game is gone: a frame that takes longer than a tap would miss the press.
    pressKey("Escape");
    const int exitStatus = waitForExit();
    releaseKey("Escape");
    return exitStatus;
}

void GameProcess::holdKey(const std::string& key) {
    pressKey(key);
    pause(500);
    releaseKey(key);
}

bool GameProcess::xdotool(const std::string& args) const { return xdriver::xdotoolOn(xDisplay, args); }

void GameProcess::pressKey(const std::string& key) { xdotool("keydown " + key); }
void GameProcess::releaseKey(const std::string& key) { xdotool("keyup " + key); }

void GameProcess::tapKey(const std::string& key) {
    // Held over several frames: the game samples the keys once a frame, and a software-rendered
    // frame on a loaded machine can be long.
    pressKey(key);
    pause(400);
    releaseKey(key);
    pause(50);
}

void GameProcess::pressButton(int button) { xdotool("mousedown " + std::to_string(button)); }
void GameProcess::releaseButton(int button) { xdotool("mouseup " + std::to_string(button)); }

void GameProcess::moveMouse(int x, int y) {
    xdotool("mousemove " + std::to_string(x) + " " + std::to_string(y));
}

unsigned long GameProcess::window() {
    const std::string search = std::string("xdotool search --name \"^") + CAPTION + "$\" 2>/dev/null";
    std::string ids = commandOutput(xdriver::commandOn(xDisplay, search));
    return strtoul(ids.c_str(), nullptr, 10);
}

bool GameProcess::screenshot(const std::string& name, int timeoutMs) {
    tapKey("F1");
    std::string path = dir + "/" + name;
    Image image;
    for (int waited = 0; waited <= timeoutMs; waited += 50) {
        if (loadBmp(path, image)) return true;
        pause(50);
    }
    return false;
}

bool loadBmp(const std::string& path, Image& image) {
    SDL_Surface* bmp = SDL_LoadBMP(path.c_str());
    if (!bmp) return false;
    image.width = bmp->w;
    image.height = bmp->h;
    image.pixels.assign((size_t)bmp->w * bmp->h, 0);
    int bpp = bmp->format->BytesPerPixel;
    for (int y = 0; y < bmp->h; ++y)
        for (int x = 0; x < bmp->w; ++x) {
            Uint8* p = (Uint8*)bmp->pixels + y * bmp->pitch + x * bpp;
            Uint32 raw = 0;
            memcpy(&raw, p, bpp);
            Uint8 r, g, b;
            SDL_GetRGB(raw, bmp->format, &r, &g, &b);
            image.pixels[(size_t)y * bmp->w + x] = r << 16 | g << 8 | b;
        }
    SDL_FreeSurface(bmp);
    return true;
}

std::pair<int, int> Image::inkColumns(int y0, int y1) const {
    int first = -1, last = -1;
    for (int y = y0; y < y1; ++y)
        for (int x = 0; x < width; ++x)
            if (at(x, y) != BACKGROUND) {
                if (first < 0 || x < first) first = x;
                if (x > last) last = x;
            }
    return {first, last};
}

bool Image::hasInk(int x0, int y0, int x1, int y1) const {
    for (int y = y0; y < y1; ++y)
        for (int x = x0; x < x1; ++x)
            if (at(x, y) != BACKGROUND) return true;
    return false;
}

} // namespace e2e
