#include "game/desktop/SettingsPanel.h"

#include <algorithm>

#include <SDL/SDL_keysym.h>

#include "engine/Orvel.h"
#include "game/GamepadControl.h"
#include "game/Main.h"
#include "game/Resources.h"
#include "game/desktop/DisplaySwitch.h"
#include "game/desktop/Settings.h"
#include "scene/DirectScene2D.h"
#include "scene/Text.h"

using orvel::Orvel;
using orvel::vec3;
using orvel::vec4;

namespace {

const vec4 CHOSEN_COLOR(1.0f, 0.85f, 0.2f, 1.0f);
const vec4 LINE_COLOR(0.8f, 0.8f, 0.8f, 1.0f);

bool pressed(int key, int other) { return Orvel::keyPressed(key) || Orvel::keyPressed(other); }

// A mouse button clicked by hand: one the pad holds for a trigger is no click.
bool clicked(int button) { return Orvel::mousePressed(button) && !g_gamepad.holdsButton(button); }

} // namespace

SettingsPanel::SettingsPanel(SettingsFile* file)
    : file(file), preview(), current(MUSIC_VOLUME), root(nullptr), labels(), values() {}

SettingsPanel::~SettingsPanel() {
    if (!root) return;
    root->clear();
    for (int i = 0; i < LINE_COUNT; ++i) {
        delete labels[i];
        delete values[i];
    }
    delete root;
}

const char* SettingsPanel::label(Line line) {
    static const char* const LABELS[LINE_COUNT] = {"Music volume", "Effects volume", "Display", "Screen shake",
                                                    "Flashes"};
    return LABELS[line];
}

std::string SettingsPanel::valueText(Line line) {
    switch (line) {
    case MUSIC_VOLUME:
        return "< " + std::to_string(g_settings.musicVolume) + " >";
    case EFFECTS_VOLUME:
        return "< " + std::to_string(g_settings.effectsVolume) + " >";
    case DISPLAY:
        // The mode the game is in, which the command line may have chosen.
        return Orvel::fullscreen ? "Full screen" : "Window";
    case SCREEN_SHAKE:
        return g_settings.screenShake ? "On" : "Off";
    case FLASHES:
        return g_settings.softFlashes ? "Soft" : "Full";
    case LINE_COUNT:
        break;
    }
    return "";
}

bool SettingsPanel::contains(int x, int y) {
    return x >= (int)LEFT && x < (int)RIGHT && y >= (int)TOP && y < (int)(TOP + LINE_STEP * LINE_COUNT);
}

int SettingsPanel::lineAt(int x, int y) { return contains(x, y) ? (int)(((float)y - TOP) / LINE_STEP) : -1; }

bool SettingsPanel::update(uint32_t realNow) {
    const int before = current;
    if (pressed(SDLK_UP, SDLK_w)) current = (current + LINE_COUNT - 1) % LINE_COUNT;
    if (pressed(SDLK_DOWN, SDLK_s)) current = (current + 1) % LINE_COUNT;
    bool changed = false;
    if (pressed(SDLK_LEFT, SDLK_a)) {
        change((Line)current, -1, realNow);
        changed = true;
    }
    if (pressed(SDLK_RIGHT, SDLK_d)) {
        change((Line)current, 1, realNow);
        changed = true;
    }
    // The pad's Start holds Return and P together: that is the pause ending, not a change.
    if (DisplaySwitch::plainReturnPressed() && !Orvel::keyPressed(SDLK_p)) {
        change((Line)current, 1, realNow);
        changed = true;
    }
    const int x = Orvel::mouseX(), y = Orvel::mouseY();
    const int under = lineAt(x, y);
    const bool moved = Orvel::events && (Orvel::events->mouseX != Orvel::events->mousePrevX ||
                                         Orvel::events->mouseY != Orvel::events->mousePrevY);
    if (under >= 0 && (moved || clicked(1) || clicked(3))) current = under;
    if (under >= 0 && clicked(1)) {
        change((Line)current, 1, realNow);
        changed = true;
    }
    if (under >= 0 && clicked(3)) {
        change((Line)current, -1, realNow);
        changed = true;
    }
    preview.update(realNow);
    return changed || current != before;
}

void SettingsPanel::change(Line line, int step, uint32_t realNow) {
    switch (line) {
    case MUSIC_VOLUME:
        g_settings.musicVolume = std::clamp(g_settings.musicVolume + step, 0, Settings::VOLUME_MAX);
        applyVolumes();
        preview.musicChanged(realNow);
        break;
    case EFFECTS_VOLUME:
        g_settings.effectsVolume = std::clamp(g_settings.effectsVolume + step, 0, Settings::VOLUME_MAX);
        applyVolumes();
        preview.effectsChanged();
        break;
    case DISPLAY:
        // The switch saves the settings itself, and only when the display took it.
        DisplaySwitch::toggle(file);
        return;
    case SCREEN_SHAKE:
        g_settings.screenShake = !g_settings.screenShake;
        break;
    case FLASHES:
        g_settings.softFlashes = !g_settings.softFlashes;
        break;
    case LINE_COUNT:
        return;
    }
    if (file) file->save(g_settings);
}

void SettingsPanel::build() {
    root = new DirectScene2D(-1, -1);
    root->debugDraw = false;
    for (int i = 0; i < LINE_COUNT; ++i) {
        const float y = TOP + LINE_STEP * (float)i;
        labels[i] = new Text(Resources::font_medium, label((Line)i));
        values[i] = new Text(Resources::font_medium, "");
        for (Text* text : {labels[i], values[i]}) {
            text->fontSize = FONT_SIZE;
            text->position = vec3(text == labels[i] ? LABEL_X : VALUE_X, y, 0.0f);
            root->add(text);
        }
        // The size comes with the text at the new glyph height, and the hot spot from the size.
        labels[i]->setText(label((Line)i));
        labels[i]->setHotSpot(TopLeft);
    }
}

void SettingsPanel::draw() {
    if (!root) build();
    for (int i = 0; i < LINE_COUNT; ++i) {
        values[i]->setText(valueText((Line)i).c_str());
        values[i]->setHotSpot(TopLeft);
        const vec4 color = i == current ? CHOSEN_COLOR : LINE_COLOR;
        labels[i]->color = color;
        values[i]->color = color;
    }
    root->draw();
}
