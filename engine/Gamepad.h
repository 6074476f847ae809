#pragma once
// The first joystick: opened at start-up when one is present, its axes and buttons written by the
// input event thread and read by the main thread through a snapshot taken once a frame, like the
// keyboard and mouse. Events of joystick 0 count even when none was opened, so a program can
// push them into SDL's queue itself.

#include <cstdint>

union SDL_Event;
struct _SDL_Joystick;

namespace orvel {

class Gamepad {
public:
    static const int AXES = 8;     // axes 0..7 are kept; further ones are ignored
    static const int BUTTONS = 32; // buttons 0..31 likewise

    // Starts SDL's joystick subsystem and opens the first joystick present, noting how each of
    // its axes rests. Nothing is printed when there is none; one line on standard error
    // ("Could not open joystick 0: ...") when opening it fails. A program opens it before
    // Orvel::init: SDL's event thread then finds the joystick list complete when it starts.
    static void open();
    // Closes the joystick and the subsystem and forgets every state.
    static void close();
    // A joystick was opened.
    static bool present() { return joystick != nullptr; }
    static int axisCount() { return axes; }
    static int buttonCount() { return buttons; }
    // The value axis `i` had when the joystick was opened; 0 for an axis it does not have.
    static int16_t restingAxis(int i) { return i >= 0 && i < AXES ? resting[i] : 0; }
    // Overrides the axis and button counts and the resting values, as open found them.
    static void describe(int axisCount, int buttonCount, const int16_t* restingAxes);

    // Event thread: SDL_JOYAXISMOTION, SDL_JOYBUTTONDOWN, SDL_JOYBUTTONUP and SDL_JOYHATMOTION
    // (its first hat, the d-pad) of joystick 0.
    static void handle(const SDL_Event& event);
    // Main thread, once a frame: the live state becomes this frame's, this frame's the previous.
    static void update();

    // This frame's value of axis `i`, -32768..32767; 0 outside 0..AXES-1.
    static int16_t axis(int i);
    static bool buttonDown(int b);
    static bool buttonPressed(int b);  // down this frame, up the frame before
    // This frame's d-pad as SDL's SDL_HAT_UP, _RIGHT, _DOWN and _LEFT bits; 0 when centred.
    static uint8_t hat() { return hatNow; }
    // Any axis, button or hat event arrived since start-up.
    static bool used() { return eventsSeen != 0; }
    // Axis, button and hat events of joystick 0 the event thread has taken in since start-up.
    static uint32_t eventCount() { return eventsSeen; }

private:
    static _SDL_Joystick* joystick;
    static int axes;
    static int buttons;
    static int16_t resting[AXES];
    static volatile int16_t axesLive[AXES];
    static volatile uint32_t buttonsLive;
    static volatile uint8_t hatLive;
    static volatile uint32_t eventsSeen;
    static int16_t axesNow[AXES];
    static uint32_t buttonsNow;
    static uint32_t buttonsBefore;
    static uint8_t hatNow;
};

} // namespace orvel
