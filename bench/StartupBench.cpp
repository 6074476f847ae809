// Start-up of the real program: the wall time from starting `nightvector` to the first frame that
// shows the intro screen and to the first pixel it shows (its loading bar), the program's peak
// resident memory when the intro shows, and its CPU use while the intro waits.
//
// The program runs from the working directory (the repository root, where it finds its data) on
// the X server of this process, with SDL_AUDIODRIVER=dummy and its output thrown away. A first,
// untimed run takes the reference: the top band of the screen once it shows the intro's text and
// has stayed the same for half a second. Each timed run then starts the program and reads that
// band of the root window back with XGetImage every 2 ms until it equals the reference; the time
// from just before the spawn to that read-back is the run's start-up time. The program's
// window covers the screen, and is stacked above this process's own window, so the root window
// shows what it draws; a frame reaches the server whole, so the band stands for the frame.

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <string>
#include <thread>
#include <vector>

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <X11/Xlib.h>
#include <X11/Xutil.h>

#include <SDL/SDL.h>
#include <benchmark/benchmark.h>

#include "tests/support/Processes.h"
#include "engine/GL.h"
#include "engine/Orvel.h"

namespace {

// Timed start-ups; the table shows their median.
const int RUNS = 5;
// The loading bar's rows: it lies 48 pixels above the bottom of the 720-row window, 3 high.
const int BAR_TOP = 660;
const int BAR_ROWS = 20;
// Rows at the top of the screen compared with the reference: the intro's title and first lines.
const int BAND_ROWS = 200;
// A channel above this counts as lit; the reference needs at least MIN_LIT_PIXELS lit pixels,
// which the black screen before the first frame does not have.
const int LIT_LEVEL = 128;
const int MIN_LIT_PIXELS = 200;
// ms: the poll period, how long the reference must stay unchanged, and the give-up time.
const int POLL_MS = 2;
const int STABLE_MS = 500;
const int TIMEOUT_MS = 60000;
// ms over which the CPU use at the intro is taken.
const int CPU_WINDOW_MS = 3000;

using Clock = std::chrono::steady_clock;

double msSince(Clock::time_point start) {
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

void sleepMs(int ms) {
    std::this_thread::sleep_for(std::chrono::milliseconds(ms));
}

// A band of screen rows, read back from the root window: by default the top band.
class ScreenBand {
public:
    explicit ScreenBand(int top = 0, int rowCount = BAND_ROWS)
        : display(XOpenDisplay(nullptr)), width(0), top(top), rows(0) {
        if (!display) return;
        width = DisplayWidth(display, DefaultScreen(display));
        rows = std::max(0, std::min(rowCount, DisplayHeight(display, DefaultScreen(display)) - top));
    }
    ~ScreenBand() {
        if (display) XCloseDisplay(display);
    }
    ScreenBand(const ScreenBand&) = delete;
    ScreenBand& operator=(const ScreenBand&) = delete;

    bool isOpen() const { return display != nullptr; }

    // The band's pixels as the server holds them; empty when the read-back failed.
    std::vector<uint32_t> read() {
        std::vector<uint32_t> pixels;
        XImage* image = XGetImage(display, DefaultRootWindow(display), 0, top, (unsigned)width, (unsigned)rows,
                                  AllPlanes, ZPixmap);
        if (!image) return pixels;
        pixels.resize((size_t)width * (size_t)rows);
        for (int y = 0; y < rows; ++y) {
            for (int x = 0; x < width; ++x) pixels[(size_t)y * width + x] = (uint32_t)XGetPixel(image, x, y);
        }
        XDestroyImage(image);
        return pixels;
    }

private:
    Display* display;
    int width;
    int top;
    int rows;
};

// Whether any pixel of the band has any colour at all.
bool anyColour(const std::vector<uint32_t>& pixels) {
    for (uint32_t p : pixels) {
        if ((p & 0xffffffu) != 0) return true;
    }
    return false;
}

int litPixels(const std::vector<uint32_t>& pixels) {
    int n = 0;
    for (uint32_t p : pixels) {
        if ((int)((p >> 16) & 0xff) > LIT_LEVEL || (int)((p >> 8) & 0xff) > LIT_LEVEL || (int)(p & 0xff) > LIT_LEVEL) ++n;
    }
    return n;
}

// The running program, ended and reaped when the object goes.
class Program {
public:
    Program() : pid(-1) {}
    ~Program() { stop(); }
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    // Starts the game with SDL_AUDIODRIVER=dummy and its output to /dev/null, with `option` and
    // its value on its command line when not null.
    bool start(const char* option = nullptr, const char* value = nullptr) {
        char binary[] = NIGHTVECTOR_BINARY;
        char* argv[] = {binary, const_cast<char*>(option), const_cast<char*>(value), nullptr};
        pid = processes::spawnQuietly(binary, argv, "SDL_AUDIODRIVER=dummy");
        return pid > 0;
    }
    bool isRunning() const { return pid > 0 && waitpid(pid, nullptr, WNOHANG) == 0; }
    double peakResidentKib() const { return pid > 0 ? processes::peakResidentKib(pid) : -1.0; }
    double cpuSeconds() const { return pid > 0 ? processes::cpuSeconds(pid) : -1.0; }
    void stop() {
        if (pid <= 0) return;
        kill(pid, SIGKILL);
        waitpid(pid, nullptr, 0);
        pid = -1;
    }

private:
    pid_t pid;
};

// Results shared by the rows: the start-up runs feed the first-pixel and the memory rows.
std::vector<uint32_t> introBand;
std::vector<double> peakKibOfStarts;
std::vector<double> firstPixelMsOfStarts;

// The untimed first run: waits for a band with the intro's text that stays the same for
// STABLE_MS. Also fills the file cache, as for any later start of the game.
bool takeReference(ScreenBand& band, std::string& error) {
    const std::vector<uint32_t> before = band.read();
    Program program;
    if (!program.start()) {
        error = "cannot start " NIGHTVECTOR_BINARY;
        return false;
    }
    const Clock::time_point start = Clock::now();
    std::vector<uint32_t> candidate;
    Clock::time_point since = start;
    while (msSince(start) < TIMEOUT_MS) {
        if (!program.isRunning()) {
            error = "the program ended before showing the intro";
            return false;
        }
        std::vector<uint32_t> now = band.read();
        if (now != candidate) {
            candidate = now;
            since = Clock::now();
        } else if (candidate != before && litPixels(candidate) >= MIN_LIT_PIXELS && msSince(since) >= STABLE_MS) {
            introBand = candidate;
            return true;
        }
        sleepMs(POLL_MS * 10);
    }
    error = "no steady intro screen";
    return false;
}

// One timed run: ms from the spawn to the first read-back equal to the reference, or -1; and in
// firstPixelMs the ms to the first read-back with any colour in the top band or in `bar`, the
// rows of the loading bar (-1 if none came before the intro).
double timeOneStart(ScreenBand& band, ScreenBand& bar, double& peakKib, double& firstPixelMs) {
    // The previous run's window may still be on the screen until the server drops it.
    const Clock::time_point cleared = Clock::now();
    while ((band.read() == introBand || anyColour(bar.read())) && msSince(cleared) < TIMEOUT_MS) sleepMs(POLL_MS);

    Program program;
    firstPixelMs = -1.0;
    const Clock::time_point start = Clock::now();
    if (!program.start()) return -1.0;
    while (msSince(start) < TIMEOUT_MS) {
        const std::vector<uint32_t> top = band.read();
        if (firstPixelMs < 0.0 && (anyColour(top) || anyColour(bar.read()))) firstPixelMs = msSince(start);
        if (top == introBand) {
            const double ms = msSince(start);
            peakKib = program.peakResidentKib();
            return ms;
        }
        if (!program.isRunning()) return -1.0;
        sleepMs(POLL_MS);
    }
    return -1.0;
}

double median(std::vector<double> values) {
    if (values.empty()) return 0.0;
    std::sort(values.begin(), values.end());
    const size_t n = values.size();
    return n % 2 ? values[n / 2] : 0.5 * (values[n / 2 - 1] + values[n / 2]);
}

// One iteration per start; the time of each run is its iteration time.
void StartupToIntro(benchmark::State& state) {
    state.SetLabel("nightvector start to intro");
    // This process's own window, under the game's, is made black: the first pixel is the game's.
    if (orvel::Orvel::window) {
        glClearColor(0, 0, 0, 0);
        glClear(GL_COLOR_BUFFER_BIT);
        SDL_GL_SwapBuffers();
    }
    ScreenBand band;
    ScreenBand bar(BAR_TOP, BAR_ROWS);
    std::string error;
    if (!band.isOpen()) {
        state.SkipWithError("no X display");
        return;
    }
    if (!takeReference(band, error)) {
        state.SkipWithError(error.c_str());
        return;
    }
    std::vector<double> ms;
    peakKibOfStarts.clear();
    firstPixelMsOfStarts.clear();
    for (auto _ : state) {
        double peakKib = -1.0;
        double firstPixelMs = -1.0;
        const double t = timeOneStart(band, bar, peakKib, firstPixelMs);
        if (t < 0.0) {
            state.SkipWithError("the intro did not show");
            break;
        }
        state.SetIterationTime(t / 1000.0);
        ms.push_back(t);
        peakKibOfStarts.push_back(peakKib);
        firstPixelMsOfStarts.push_back(firstPixelMs < 0.0 ? t : firstPixelMs);
    }
    if (ms.size() < (size_t)RUNS) {
        peakKibOfStarts.clear();
        firstPixelMsOfStarts.clear();
        return;
    }
    // With five runs the 99th percentile is the slowest.
    state.counters["median_ms"] = median(ms);
    state.counters["p99_ms"] = *std::max_element(ms.begin(), ms.end());
}

// The first pixel of the start-up runs: the median and the slowest, each run's time given as the
// iteration time.
void StartupToFirstPixel(benchmark::State& state) {
    state.SetLabel("nightvector to first pixel");
    size_t run = 0;
    for (auto _ : state) {
        if (run < firstPixelMsOfStarts.size()) state.SetIterationTime(firstPixelMsOfStarts[run] / 1000.0);
        ++run;
    }
    if (firstPixelMsOfStarts.size() < (size_t)RUNS) {
        state.SkipWithError("needs the start-up row");
        return;
    }
    state.counters["median_ms"] = median(firstPixelMsOfStarts);
    state.counters["p99_ms"] = *std::max_element(firstPixelMsOfStarts.begin(), firstPixelMsOfStarts.end());
}

// The game's peak resident memory when its intro first shows, median over the start-up runs.
void StartupPeakMemory(benchmark::State& state) {
    state.SetLabel("nightvector peak RSS at intro");
    for (auto _ : state) {
    }
    if (peakKibOfStarts.empty()) {
        state.SkipWithError("needs the start-up row");
        return;
    }
    state.counters["peak_rss_mib"] = median(peakKibOfStarts) / 1024.0;
}

// The CPU the program uses while its intro shows and waits for a key: the CPU time of all its
// threads over CPU_WINDOW_MS, as a percentage of one core. The buffer swap waits for no vertical
// blank on a virtual X server: with the frame cap (the display's rate) the game holds its frames
// to it; with --frame-cap 0 (argument 0) nothing paces the loop.
void StartupIntroCpu(benchmark::State& state) {
    const bool capped = state.range(0) != 0;
    state.SetLabel(capped ? "nightvector CPU at intro" : "  the same, --frame-cap 0");
    for (auto _ : state) {
    }
    ScreenBand band;
    if (!band.isOpen() || introBand.empty()) {
        state.SkipWithError("needs the start-up row");
        return;
    }
    Program program;
    const Clock::time_point start = Clock::now();
    if (!(capped ? program.start() : program.start("--frame-cap", "0"))) {
        state.SkipWithError("cannot start " NIGHTVECTOR_BINARY);
        return;
    }
    while (band.read() != introBand && program.isRunning() && msSince(start) < TIMEOUT_MS) sleepMs(POLL_MS);
    const double before = program.cpuSeconds();
    const Clock::time_point from = Clock::now();
    sleepMs(CPU_WINDOW_MS);
    const double after = program.cpuSeconds();
    const double seconds = msSince(from) / 1000.0;
    if (!program.isRunning() || before < 0.0 || after < 0.0) {
        state.SkipWithError("the intro did not stay");
        return;
    }
    state.counters["cpu_percent"] = (after - before) / seconds * 100.0;
}

} // namespace

BENCHMARK(StartupToIntro)->Iterations(RUNS)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(StartupToFirstPixel)->Iterations(RUNS)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(StartupPeakMemory)->Iterations(1);
BENCHMARK(StartupIntroCpu)->Arg(1)->Arg(0)->Iterations(1);
