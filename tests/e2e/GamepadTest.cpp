// The real program played with a gamepad. The pad is a named pipe that SDL reads as a Linux
// joystick device (SDL_JOYSTICK_DEVICE), given four axes (SDL_LINUX_JOYSTICK); the test writes the
// kernel's joystick events into it, as a pad's driver would.

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "tests/e2e/PlaySession.h"
#include "tests/support/GameProcess.h"

using e2e::GameProcess;
using e2e::Image;
using e2e::Surroundings;

namespace {

// A pad with two sticks: the left on axes 0 and 1, the right on axes 2 and 3.
class PipePad {
public:
    explicit PipePad(const std::string& path) : path(path) {
        // Held open for reading and writing, so that SDL's opening for reading never waits for a
        // writer, and what is written stays until SDL reads it.
        if (mkfifo(path.c_str(), 0600) == 0) fd = open(path.c_str(), O_RDWR | O_NONBLOCK);
    }
    ~PipePad() {
        if (fd >= 0) close(fd);
    }
    bool ready() const { return fd >= 0; }
    // The environment that makes SDL take the pipe for joystick 0 with four axes.
    std::vector<std::string> environment() const {
        return {"SDL_JOYSTICK_DEVICE=" + path, "SDL_LINUX_JOYSTICK='" + path + "' 4 0 0"};
    }
    // One axis event, as struct js_event: time, value, type (2, an axis), number.
    bool axis(uint8_t number, int16_t value) {
        unsigned char event[8] = {};
        memcpy(event + 4, &value, sizeof value);
        event[6] = 2;
        event[7] = number;
        return write(fd, event, sizeof event) == (ssize_t)sizeof event;
    }

private:
    std::string path;
    int fd = -1;
};

// [x0, x1) x [y0, y1) in screen pixels.
struct Box {
    int x0 = 1 << 30, y0 = 1 << 30, x1 = -1, y1 = -1;
    int pixels = 0;
    double centreX() const { return (x0 + x1 - 1) / 2.0; }
    double centreY() const { return (y0 + y1 - 1) / 2.0; }
};

// Blue well above red: the reticle's cyan ring and the ship's blue disc and rim, and nothing
// else in flight but the HUD boxes, which lie in the corners.
bool isBlueInk(unsigned p) {
    const int r = p >> 16 & 0xff, b = p & 0xff;
    return b >= 120 && b >= r + 40;
}

// The corners with the HUD boxes.
bool inHud(int x, int y) { return (x < 216 && (y < 76 || y >= 604)) || (x >= 1004 && y >= 444); }

// The bounding boxes of the blue shapes outside the HUD, joined across gaps of up to two pixels,
// largest first.
std::vector<Box> blueShapes(const Image& image) {
    std::vector<int> label(image.pixels.size(), -1);
    std::vector<Box> shapes;
    std::vector<int> stack;
    for (int y = 0; y < image.height; ++y)
        for (int x = 0; x < image.width; ++x) {
            const size_t i = (size_t)y * image.width + x;
            if (label[i] >= 0 || inHud(x, y) || !isBlueInk(image.at(x, y))) continue;
            Box box;
            label[i] = (int)shapes.size();
            stack.assign(1, (int)i);
            while (!stack.empty()) {
                const int j = stack.back();
                stack.pop_back();
                const int px = j % image.width, py = j / image.width;
                box.x0 = std::min(box.x0, px);
                box.y0 = std::min(box.y0, py);
                box.x1 = std::max(box.x1, px + 1);
                box.y1 = std::max(box.y1, py + 1);
                ++box.pixels;
                for (int dy = -3; dy <= 3; ++dy)
                    for (int dx = -3; dx <= 3; ++dx) {
                        const int nx = px + dx, ny = py + dy;
                        if (nx < 0 || ny < 0 || nx >= image.width || ny >= image.height || inHud(nx, ny)) continue;
                        const size_t k = (size_t)ny * image.width + nx;
                        if (label[k] >= 0 || !isBlueInk(image.at(nx, ny))) continue;
                        label[k] = (int)shapes.size();
                        stack.push_back((int)k);
                    }
            }
            shapes.push_back(box);
        }
    std::sort(shapes.begin(), shapes.end(), [](const Box& a, const Box& b) { return a.pixels > b.pixels; });
    return shapes;
}

} // namespace

TEST(Gamepad, AfterAFlightTheRightStickPutsTheReticle420PixelsFromTheDrawnShip) {
    Surroundings dir;
    dir.linkData();
    PipePad pad(dir.path() + "/pad");
    ASSERT_TRUE(pad.ready());
    GameProcess game(dir.path(), pad.environment());
    ASSERT_NO_FATAL_FAILURE(e2e::enterPlay(game, 900, 200, 3000));
    // Three seconds of the left stick full right: the camera leads the ship and zooms out with
    // its speed, so the ship is drawn left of the centre, nearer than the world's scale says.
    ASSERT_TRUE(pad.axis(0, 32767));
    e2e::pause(3000);
    // The stick let go, so the exhaust is gone and the ship's disc stands alone; the right stick
    // full right. The camera is still well off the ship a moment later.
    ASSERT_TRUE(pad.axis(0, 0));
    ASSERT_TRUE(pad.axis(2, 32767));
    e2e::pause(400);
    int number = 0;
    Image shot;
    ASSERT_TRUE(e2e::nextScreenshot(game, dir, number, shot));
    const std::vector<Box> shapes = blueShapes(shot);
    ASSERT_GE(shapes.size(), 2u);
    // The ship's disc, some 55 pixels across, is the largest; the reticle's ring, some 30
    // across, the next.
    const Box& ship = shapes[0];
    const Box& reticle = shapes[1];
    EXPECT_LT(ship.centreX(), 600.0) << "the camera did not lead the ship";
    EXPECT_NEAR(reticle.centreX() - ship.centreX(), 420.0, 10.0)
        << "ship at " << ship.centreX() << "," << ship.centreY() << ", reticle at " << reticle.centreX() << ","
        << reticle.centreY();
    EXPECT_NEAR(reticle.centreY() - ship.centreY(), 0.0, 10.0);
    e2e::quitWithEscape(game);
    EXPECT_EQ(game.errors(), "");
}
