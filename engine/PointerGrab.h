#pragma once
// Keeps the pointer inside the game's window while the program wants it there. In full screen on
// a display larger than the picture, the picture sits centred in black; SDL grabs the pointer to
// it when full screen starts, but that grab fails while the window is not yet viewable (a window
// manager still mapping it), and the pointer then wanders off the picture. This grab is asked for
// again until X grants it, and is let go when the program no longer wants it (paused, or a window).

namespace orvel {

class PointerGrab {
public:
    // Frames between two tries while X refuses the grab (another client holds one, or the window
    // is not viewable yet).
    static const int RETRY_FRAMES = 30;

    PointerGrab();

    // Once a frame. `wanted`: the pointer is confined to the window, from this frame on; false
    // lets it go, SDL's own full-screen grab included. X is called when that changes or the window
    // enters or leaves full screen, and while a wanted grab is refused, every RETRY_FRAMES frames.
    void update(bool wanted);
    // X granted the grab and it has not been let go since.
    bool held() const { return holding; }

private:
    static bool grab();
    static void release();

    bool holding;
    bool letGo;          // let go since the grab was last wanted
    bool wasFullscreen;  // Orvel::fullscreen at the last update
    int retryIn;
};

} // namespace orvel
