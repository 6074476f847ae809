#include "game/Menu.h"

#include <cmath>

#include "engine/Math.h"
#include "engine/Orvel.h"
#include "game/Main.h"
#include "scene/Drawable.h"
#include "scene/Fader.h"

using namespace orvel;

// The pointers stay uninitialised until init(): nothing ever constructs a menu.
Menu::Menu() {}

Menu::~Menu() {
    for (Drawable* item : {item1, item2, item3, item4, item5}) delete item;
}

void Menu::init() {
    float w = Orvel::getScreenWidth(), h = Orvel::getScreenHeight();
    title->position = vec3(w * 0.5f, h * 0.32f, 0);
    title->setHotSpot(Center);
    cursor->setSize(38, 38);
    cursor->setBlendColor(0.25f, 1.0f, 0.25f, 1.0f);
    float y = 350;
    for (Drawable* item : {item1, item2, item3, item4, item5}) {
        item->position = vec3(400, y, 0);
        item->setHotSpot(Center);
        y += 40;
    }
    Orvel::update();
    g_fader->color = vec4(1, 1, 1, 1);
    g_fader->fadeIn(2000);
}

void Menu::end() {}

void Menu::update() {
    cursor->position = vec3((float)Orvel::mouseX(), (float)Orvel::mouseY(), 0);
    // The pulse drives the rotation about x, which 2D drawing never reads.
    item5->rotation.x = Math::clampf(0, 0.35f, 0.9f + 0.1f * std::sin((float)Orvel::currentTime / 200.0f));
}
