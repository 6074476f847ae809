#pragma once
// Twin-stick play with a gamepad, as keys and buttons the game already reads: the left stick or
// the d-pad holds W, A, S or D, the right stick puts the pointer (and so the reticle) around the
// ship, the right trigger or shoulder holds the left mouse button (plasma), the left ones the
// right button (laser), Start holds Return and P, and Back held for a second presses Escape.
// Written into the frame's input snapshot after Orvel's update, so mouse and keyboard keep
// working alongside.

#include <cstdint>

// Where a pad keeps its sticks, triggers and buttons; -1 for what it does not have.
struct GamepadLayout {
    int leftX, leftY;   // axes of the left stick
    int rightX, rightY; // axes of the right stick
    int leftTriggerAxis, rightTriggerAxis;
    int leftShoulder, rightShoulder;
    int leftTriggerButton, rightTriggerButton;
    int back, start;
};

class GamepadControl {
public:
    // Tilt below this fraction of full deflection counts as none.
    static constexpr float DEAD_ZONE = 0.25f;
    // A trigger axis counts as pulled a quarter of the way from rest.
    static const int TRIGGER_PULLED = -16384;
    // Screen pixels from the ship to the reticle, just out of the dead zone and at full tilt.
    static constexpr float AIM_NEAR = 120.0f;
    static constexpr float AIM_FAR = 420.0f;
    // ms Back must be held to quit.
    static const uint32_t BACK_HOLD = 1000;

    // The layout of a pad with `axes` axes and `buttons` buttons whose axes rest at `resting`
    // (at least 8 values). Axes 2 and 5 resting at -32768 are triggers, as on Xbox and
    // PlayStation pads, with the right stick on axes 3 and 4; without them the right stick is on
    // axes 2 and 3 and the triggers are buttons 6 and 7. Back and Start are buttons 6 and 7 on
    // pads with trigger axes and fewer than 13 buttons, 8 and 9 on the others.
    static GamepadLayout detectLayout(int axes, int buttons, const int16_t* resting);
    // The keys that a stick held at (x, y) stands for, as bits: 1 W, 2 A, 4 S, 8 D. Nothing
    // inside the dead zone; otherwise the one or two keys of the nearest of eight directions.
    static unsigned stickKeys(int16_t x, int16_t y);
    // The keys a d-pad held at SDL's hat value `hat` stands for, as stickKeys gives them.
    static unsigned hatKeys(uint8_t hat);

    GamepadControl();

    // Writes this frame's pad into the input snapshot; nothing at all while no pad was opened
    // and no pad event has come. `realNow` is SDL's tick count, which runs on through a pause.
    void apply(uint32_t realNow);

    // Whether the pad holds mouse button `b` in this frame's snapshot (a trigger or a shoulder),
    // rather than the mouse.
    bool holdsButton(int b) const { return b >= 0 && b < 32 && (padButtons >> b) & 1; }

    bool padAims; // the right stick owns the reticle, until the mouse moves
    bool padLast; // the pad was used more lately than the keyboard and the mouse

private:
    uint32_t padButtons;  // the mouse buttons the pad added to this frame's snapshot
    float aimX, aimY;     // the stick's last aim as a screen offset from the ship
    int mouseSeenX, mouseSeenY; // the real pointer in the last frame
    uint32_t backSince;   // real ms Back went down; 0 when it is up
    bool backFired;
};

extern GamepadControl g_gamepad;
