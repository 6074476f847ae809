#include "engine/Gamepad.h"

#include <cstdio>

#include <SDL/SDL.h>

namespace orvel {

_SDL_Joystick* Gamepad::joystick = nullptr;
int Gamepad::axes = 0;
int Gamepad::buttons = 0;
int16_t Gamepad::resting[AXES] = {};
volatile int16_t Gamepad::axesLive[AXES] = {};
volatile uint32_t Gamepad::buttonsLive = 0;
volatile uint8_t Gamepad::hatLive = 0;
volatile uint32_t Gamepad::eventsSeen = 0;
int16_t Gamepad::axesNow[AXES] = {};
uint32_t Gamepad::buttonsNow = 0;
uint32_t Gamepad::buttonsBefore = 0;
uint8_t Gamepad::hatNow = 0;

void Gamepad::open() {
    if (joystick) return;
    if (SDL_InitSubSystem(SDL_INIT_JOYSTICK) != 0) return;
    if (SDL_NumJoysticks() < 1) return;
    joystick = SDL_JoystickOpen(0);
    if (!joystick) {
        fprintf(stderr, "Could not open joystick 0: %s\n", SDL_GetError());
        return;
    }
    SDL_JoystickEventState(SDL_ENABLE);
    SDL_JoystickUpdate();
    axes = SDL_JoystickNumAxes(joystick);
    buttons = SDL_JoystickNumButtons(joystick);
    for (int i = 0; i < AXES; ++i) {
        resting[i] = i < axes ? SDL_JoystickGetAxis(joystick, i) : 0;
        axesLive[i] = axesNow[i] = resting[i];
    }
}

void Gamepad::close() {
    if (joystick) SDL_JoystickClose(joystick);
    joystick = nullptr;
    if (SDL_WasInit(SDL_INIT_JOYSTICK)) SDL_QuitSubSystem(SDL_INIT_JOYSTICK);
    axes = buttons = 0;
    for (int i = 0; i < AXES; ++i) resting[i] = axesLive[i] = axesNow[i] = 0;
    buttonsLive = buttonsNow = buttonsBefore = 0;
    hatLive = hatNow = 0;
    eventsSeen = 0;
}

void Gamepad::describe(int axisCount, int buttonCount, const int16_t* restingAxes) {
    axes = axisCount;
    buttons = buttonCount;
    for (int i = 0; i < AXES; ++i) resting[i] = i < axisCount ? restingAxes[i] : 0;
}

void Gamepad::handle(const SDL_Event& event) {
    switch (event.type) {
    case SDL_JOYAXISMOTION:
        if (event.jaxis.which != 0 || event.jaxis.axis >= AXES) return;
        axesLive[event.jaxis.axis] = event.jaxis.value;
        break;
    case SDL_JOYBUTTONDOWN:
        if (event.jbutton.which != 0 || event.jbutton.button >= BUTTONS) return;
        buttonsLive = buttonsLive | 1u << event.jbutton.button;
        break;
    case SDL_JOYBUTTONUP:
        if (event.jbutton.which != 0 || event.jbutton.button >= BUTTONS) return;
        buttonsLive = buttonsLive & ~(1u << event.jbutton.button);
        break;
    case SDL_JOYHATMOTION:
        if (event.jhat.which != 0 || event.jhat.hat != 0) return;
        hatLive = event.jhat.value;
        break;
    default:
        return;
    }
    eventsSeen = eventsSeen + 1;
}

void Gamepad::update() {
    for (int i = 0; i < AXES; ++i) axesNow[i] = axesLive[i];
    buttonsBefore = buttonsNow;
    buttonsNow = buttonsLive;
    hatNow = hatLive;
}

int16_t Gamepad::axis(int i) {
    return i >= 0 && i < AXES ? axesNow[i] : 0;
}

bool Gamepad::buttonDown(int b) {
    return b >= 0 && b < BUTTONS && (buttonsNow >> b & 1u) != 0;
}

bool Gamepad::buttonPressed(int b) {
    return buttonDown(b) && (buttonsBefore >> b & 1u) == 0;
}

} // namespace orvel
