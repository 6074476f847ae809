#include "game/replay/ReplayViewer.h"

#include <cstdio>
#include <cstring>

#include <SDL/SDL_keysym.h>

#include "engine/Orvel.h"
#include "engine/SafeFile.h"
#include "game/Game.h"
#include "game/GameSessions.h"
#include "game/Main.h"
#include "game/Resources.h"
#include "game/replay/ReplayPlayback.h"
#include "game/replay/StateHash.h"
#include "scene/DirectScene2D.h"
#include "scene/Text.h"

using orvel::Orvel;

ReplayViewer* g_replayViewer = nullptr;

namespace {

// Where the label sits: its top right corner, in screen pixels from the screen's top right.
const float LABEL_MARGIN_X = 20.0f;
const float LABEL_MARGIN_Y = 16.0f;
const float LABEL_SIZE = 20.0f;

} // namespace

bool ReplayViewer::load(const std::string& path, replay::Replay& replay, std::string& error) {
    std::string bytes;
    switch (orvel::SafeFile::read(path, replay::MAX_FILE_BYTES + 1, bytes, error)) {
    case orvel::SafeFile::READ_OK:
        break;
    case orvel::SafeFile::READ_TRUNCATED:
        error = "too large to be a replay";
        return false;
    case orvel::SafeFile::READ_MISSING:
        error = "No such file or directory";
        return false;
    case orvel::SafeFile::READ_NOT_FILE:
        error = "not a file";
        return false;
    case orvel::SafeFile::READ_FAILED:
        return false;
    }
    return replay::read((const uint8_t*)bytes.data(), bytes.size(), replay, error);
}

ReplayViewer::ReplayViewer(const replay::Replay& replay)
    : replayed(replay), next(0), divergedAt(-1), stepsPerFrame(1), holding(false), root(nullptr), text(nullptr) {}

ReplayViewer::~ReplayViewer() {
    if (root) root->clear();
    delete text;
    delete root;
}

void ReplayViewer::start() {
    // The recorded shake and flashes change only the picture: the viewer's own settings hold.
    const uint32_t begun = replayed.frames.empty() ? Orvel::currentTime
                                                   : replayed.frames[0].time - replayed.frames[0].sync;
    Orvel::setFrameTime(begun, begun);
    GameSessions::end();
    GameSessions::begin((int)replayed.header.seed);
}

std::string ReplayViewer::label() const {
    uint32_t ms = 0;
    if (next > 0 && !replayed.frames.empty()) ms = replayed.frames[next - 1].time - replayed.frames[0].time;
    const unsigned seconds = ms / 1000;
    char buffer[48];
    snprintf(buffer, sizeof buffer, "Replay  %u:%02u", seconds / 60, seconds % 60);
    return buffer;
}

void ReplayViewer::update() {
    if (Orvel::keyPressed(SDLK_SPACE)) holding = !holding;
    if (Orvel::keyPressed(SDLK_1)) stepsPerFrame = 1;
    if (Orvel::keyPressed(SDLK_2)) stepsPerFrame = 2;
    if (Orvel::keyPressed(SDLK_4)) stepsPerFrame = 4;
    if (holding || finished() || !g_game) {
        // The picture stands at the last update's time.
        if (next > 0) Orvel::setFrameTime(replayed.frames[next - 1].time, replayed.frames[next - 1].time);
        return;
    }
    steps((size_t)stepsPerFrame);
}

void ReplayViewer::steps(size_t count) {
    Orvel::GEvent* e = Orvel::events;
    if (!e || !g_game) return;
    // The frame's own snapshot, put back after the updates.
    uint32_t keys[Orvel::GEvent::KEY_WORDS], keysPrev[Orvel::GEvent::KEY_WORDS];
    memcpy(keys, e->keys, sizeof keys);
    memcpy(keysPrev, e->keysPrev, sizeof keysPrev);
    const uint32_t buttons = e->buttons, buttonsPrev = e->buttonsPrev;
    const int x = e->mouseX, y = e->mouseY, prevX = e->mousePrevX, prevY = e->mousePrevY;
    for (size_t n = 0; n < count && !finished(); ++n) step();
    // The rest of the frame reads the player's own keys again.
    memcpy(e->keys, keys, sizeof keys);
    memcpy(e->keysPrev, keysPrev, sizeof keysPrev);
    e->buttons = buttons;
    e->buttonsPrev = buttonsPrev;
    e->mouseX = x;
    e->mouseY = y;
    e->mousePrevX = prevX;
    e->mousePrevY = prevY;
}

void ReplayViewer::step() {
    const replay::Frame& f = replayed.frames[next];
    ReplayPlayback::apply(f);
    g_game->update();
    if (f.hasHash && stateHash(*g_game) != f.hash) {
        divergedAt = (long)next;
        fprintf(stderr, "Replay diverged at frame %zu\n", next);
    }
    ++next;
}

void ReplayViewer::fastForward() { steps(replayed.frames.size()); }

void ReplayViewer::draw() {
    if (!root) {
        root = new DirectScene2D(-1, -1);
        root->debugDraw = false;
        text = new Text(Resources::font_medium, "");
        text->fontSize = LABEL_SIZE;
        root->add(text);
    }
    text->setText(label().c_str());
    text->setHotSpot(TopRight);
    text->position = orvel::vec3((float)Orvel::getScreenWidth() - LABEL_MARGIN_X, LABEL_MARGIN_Y, 0.0f);
    root->draw();
}
