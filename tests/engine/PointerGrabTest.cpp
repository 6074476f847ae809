// The pointer grab on a real full-screen window: held when wanted, let go when not, and asked
// for again, at its own pace, while another client holds the pointer.

#include "engine/PointerGrab.h"

#include <gtest/gtest.h>

#include "engine/Orvel.h"

// After GoogleTest: Xlib's macros (None, Bool, ...) would break its headers.
#include <X11/Xlib.h>

using orvel::Orvel;
using orvel::PointerGrab;

namespace {

// A second X client, as another program on the same display would be.
class OtherClient {
public:
    OtherClient() : display(XOpenDisplay(nullptr)) {}
    ~OtherClient() {
        if (display) XCloseDisplay(display);
    }
    // Tries to grab the pointer to the root window; X's answer (GrabSuccess, AlreadyGrabbed, ...).
    int tryGrab() {
        const int result = XGrabPointer(display, DefaultRootWindow(display), False, 0, GrabModeAsync,
                                        GrabModeAsync, None, None, CurrentTime);
        XSync(display, False);
        return result;
    }
    void release() {
        XUngrabPointer(display, CurrentTime);
        XSync(display, False);
    }

    Display* display;
};

class PointerGrabTest : public ::testing::Test {
protected:
    void SetUp() override {
        Orvel::init(640, 480, "Grab", true, false);
        ASSERT_NE(Orvel::window, nullptr);
        ASSERT_NE(other.display, nullptr);
    }
    void TearDown() override {
        if (Orvel::window) Orvel::quit();
    }

    OtherClient other;
};

} // namespace

TEST_F(PointerGrabTest, AWantedGrabIsHeldAndLetGoWhenNoLongerWanted) {
    PointerGrab grab;
    grab.update(true);
    EXPECT_TRUE(grab.held());
    EXPECT_EQ(other.tryGrab(), AlreadyGrabbed);
    grab.update(false);
    EXPECT_FALSE(grab.held());
    // Let go: SDL's own full-screen grab went with it, so another client may take the pointer.
    EXPECT_EQ(other.tryGrab(), GrabSuccess);
    other.release();
    grab.update(true);
    EXPECT_TRUE(grab.held());
    EXPECT_EQ(other.tryGrab(), AlreadyGrabbed);
}

TEST_F(PointerGrabTest, ARefusedGrabIsAskedForAgainEveryThirtyFrames) {
    PointerGrab grab;
    grab.update(false);
    ASSERT_EQ(other.tryGrab(), GrabSuccess);
    grab.update(true);
    EXPECT_FALSE(grab.held());
    other.release();
    // The pointer is free again, but the next try comes only after RETRY_FRAMES frames.
    for (int i = 0; i < PointerGrab::RETRY_FRAMES; ++i) {
        grab.update(true);
        ASSERT_FALSE(grab.held()) << "frame " << i;
    }
    grab.update(true);
    EXPECT_TRUE(grab.held());
    EXPECT_EQ(other.tryGrab(), AlreadyGrabbed);
}

TEST_F(PointerGrabTest, FullScreenEnteredWhileNotWantedIsLetGo) {
    Orvel::quit();
    Orvel::init(640, 480, "Grab", false, false);
    PointerGrab grab;
    grab.update(false);
    ASSERT_TRUE(Orvel::toggleFullscreen());
    // SDL grabs the pointer for full screen on its own.
    ASSERT_EQ(other.tryGrab(), AlreadyGrabbed);
    grab.update(false);
    EXPECT_EQ(other.tryGrab(), GrabSuccess);
    other.release();
}

TEST_F(PointerGrabTest, WithoutAWindowNothingIsGrabbed) {
    Orvel::quit();
    PointerGrab grab;
    grab.update(true);
    EXPECT_FALSE(grab.held());
    grab.update(false);
    EXPECT_FALSE(grab.held());
}
