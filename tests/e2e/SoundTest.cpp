// What the player hears, for real: the game runs on SDL's disk audio driver, which writes the
// mixed output (stereo, 16-bit, 44.1 kHz) to a file in real time, and the file is measured.

#include <cmath>
#include <cstdint>
#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "tests/e2e/PlaySession.h"
#include "tests/support/GameProcess.h"
#include "tests/support/XDriver.h"

using e2e::GameProcess;
using e2e::Surroundings;

namespace {

const double RATE = 44100.0;
const int FRAME_BYTES = 4; // two 16-bit channels

// A band-pass filter's centre (Hz) and Q.
struct Band {
    double centre, q;
};

// The plasma shot's band, 1 to 2 kHz, where it has three quarters of its energy and the music
// (its kick, bass and pads lower down) about a thirtieth of its own.
const Band SHOT_BAND = {1414.0, 1.414};
// 1 to 4 kHz, where the laser's hum has its lifted harmonics, clear of the music's bass.
const Band HUM_BAND = {2000.0, 0.667};

// SDL's mouse buttons: nothing held, the plasma gun, the laser.
const int NO_BUTTON = 0, PLASMA = 1, LASER = 3;

// Bytes the game has written to `file` so far, down to a whole frame.
long long writtenBytes(const std::string& file) {
    struct stat s {};
    if (stat(file.c_str(), &s) != 0) return 0;
    return (long long)s.st_size / FRAME_BYTES * FRAME_BYTES;
}

struct Recording {
    std::vector<int16_t> samples; // left, right, left, ...
    long long windowStart = 0;    // bytes written when the window opened and closed
    long long windowEnd = 0;
    int exitStatus = -1;
};

// Plays from the intro into the game with the pointer to the ship's right, waits until the ship
// has grown in, presses `button` (none for NO_BUTTON), waits `settleMs` more, then opens a
// two-second window with the button held, and quits with Escape.
void record(int button, int settleMs, Recording& r) {
    Surroundings dir;
    dir.linkData();
    const std::string file = dir.path() + "/audio.raw";
    GameProcess game(dir.path(), {"SDL_AUDIODRIVER=disk", "SDL_DISKAUDIOFILE=" + file, "SDL_DISKAUDIODELAY=23"});
    // One second to black, half a second in; the ship grows in for a second after that. The
    // first wave (and its banner) comes five seconds after the game starts, after the window.
    ASSERT_NO_FATAL_FAILURE(e2e::enterPlay(game, 900, 360, 2500));
    if (button != NO_BUTTON) game.pressButton(button);
    e2e::pause(settleMs);
    r.windowStart = writtenBytes(file);
    e2e::pause(2000);
    r.windowEnd = writtenBytes(file);
    if (button != NO_BUTTON) game.releaseButton(button);
    game.holdKey("Escape");
    r.exitStatus = game.waitForExit();

    std::ifstream in(file, std::ios::binary);
    const std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    r.samples.resize(bytes.size() / 2);
    for (size_t i = 0; i < r.samples.size(); ++i)
        r.samples[i] = (int16_t)((uint8_t)bytes[2 * i] | (uint8_t)bytes[2 * i + 1] << 8);
}

// Mean square, in full scale, of the window's mono mix after a band-pass filter around the
// band's centre (a second-order filter with 0 dB at its centre).
double bandEnergy(const Recording& r, const Band& band) {
    const double w0 = 2.0 * M_PI * band.centre / RATE;
    const double alpha = std::sin(w0) / (2.0 * band.q);
    const double a0 = 1.0 + alpha;
    const double b0 = alpha / a0, b2 = -alpha / a0, a1 = -2.0 * std::cos(w0) / a0, a2 = (1.0 - alpha) / a0;
    double x1 = 0, x2 = 0, y1 = 0, y2 = 0, sum = 0;
    const size_t first = (size_t)(r.windowStart / FRAME_BYTES), last = (size_t)(r.windowEnd / FRAME_BYTES);
    for (size_t f = first; f < last && 2 * f + 1 < r.samples.size(); ++f) {
        const double x = (r.samples[2 * f] + r.samples[2 * f + 1]) / 65536.0;
        const double y = b0 * x + b2 * x2 - a1 * y1 - a2 * y2;
        x2 = x1;
        x1 = x;
        y2 = y1;
        y1 = y;
        sum += y * y;
    }
    return last > first ? sum / (double)(last - first) : 0.0;
}

// Mean square of the window's mono mix, full band.
double energy(const Recording& r) {
    double sum = 0;
    const size_t first = (size_t)(r.windowStart / FRAME_BYTES), last = (size_t)(r.windowEnd / FRAME_BYTES);
    for (size_t f = first; f < last && 2 * f + 1 < r.samples.size(); ++f) {
        const double x = (r.samples[2 * f] + r.samples[2 * f + 1]) / 65536.0;
        sum += x * x;
    }
    return last > first ? sum / (double)(last - first) : 0.0;
}

// Frames in the window whose two sides differ.
int offCentreFrames(const Recording& r) {
    int n = 0;
    for (long long f = r.windowStart / FRAME_BYTES; f < r.windowEnd / FRAME_BYTES; ++f)
        n += r.samples[2 * f] != r.samples[2 * f + 1];
    return n;
}

// Two games recorded alike, the second with `button` held from `settleMs` before its window:
// both end with status 0 and both windows hold sound to measure. How much depends on how busy
// the machine was, since the device writes as the mixer keeps up, so no length is asserted.
void recordBoth(int button, int settleMs, Recording& quiet, Recording& held) {
    ASSERT_NO_FATAL_FAILURE(record(NO_BUTTON, settleMs, quiet));
    ASSERT_NO_FATAL_FAILURE(record(button, settleMs, held));
    EXPECT_EQ(quiet.exitStatus, 0);
    EXPECT_EQ(held.exitStatus, 0);
    for (const Recording* r : {&quiet, &held}) ASSERT_GT(r->windowEnd, r->windowStart);
}

} // namespace

TEST(Sound, HoldingFireAddsTheShotsAboveTheMusic) {
    Recording quiet, firing;
    ASSERT_NO_FATAL_FAILURE(recordBoth(PLASMA, 0, quiet, firing));
    // The music plays in both.
    EXPECT_GT(energy(quiet), 1e-3);
    EXPECT_GT(energy(firing), 1e-3);
    // Ten shots of plasma: clearly above the music in the shots' band.
    const double ratio = bandEnergy(firing, SHOT_BAND) / bandEnergy(quiet, SHOT_BAND);
    EXPECT_GT(ratio, 2.0) << "firing " << bandEnergy(firing, SHOT_BAND) << ", music alone "
                          << bandEnergy(quiet, SHOT_BAND);
    // No enemy is near yet: the music and the ship's own sounds are all centred.
    EXPECT_EQ(offCentreFrames(quiet), 0);
    EXPECT_EQ(offCentreFrames(firing), 0);
}

TEST(Sound, TheLaserHumIsHeardAboveTheMusicAtTheDefaultMix) {
    Recording quiet, beam;
    // The beam's start sound lasts 0.45 s; the window then holds its hum alone over the music.
    ASSERT_NO_FATAL_FAILURE(recordBoth(LASER, 700, quiet, beam));
    EXPECT_GT(energy(quiet), 1e-4);
    // Where the ear is keenest, the hum carries at least five times the music's energy over
    // these two seconds (7 dB above it).
    const double ratio = bandEnergy(beam, HUM_BAND) / bandEnergy(quiet, HUM_BAND);
    EXPECT_GT(ratio, 6.0) << "beam " << bandEnergy(beam, HUM_BAND) << ", music alone " << bandEnergy(quiet, HUM_BAND);
}
