#include "game/arcade/GameOverScreen.h"

#include <cstdio>
#include <ctime>

#include <SDL/SDL_keysym.h>

#include "engine/Orvel.h"
#include "engine/TypedKeys.h"
#include "game/Game.h"
#include "game/Main.h"
#include "game/Resources.h"
#include "game/ScoreCounter.h"
#include "game/arcade/ScoreTableView.h"
#include "game/desktop/DisplaySwitch.h"
#include "game/replay/LastReplay.h"
#include "game/scores/PlayerName.h"
#include "game/scores/ScoreFile.h"
#include "scene/DirectScene2D.h"
#include "scene/Fader.h"
#include "scene/Text.h"

using orvel::Orvel;
using orvel::TypedKeys;
using orvel::vec3;
using orvel::vec4;

GameOverScreen* g_gameOver = nullptr;

const char* const GameOverScreen::ENTRY_HINT = "A new best game! Type your name, Return to keep it";
const char* const GameOverScreen::TABLE_HINT = "Return to play again, R to watch it, Escape to quit";

namespace {

const float SUMMARY_SIZE = 24.0f;
const float HINT_SIZE = 20.0f;
const vec4 HINT_COLOR(0.8f, 0.8f, 0.8f, 1.0f);

int64_t systemClock() { return (int64_t)time(nullptr); }

Text* centredText(float size, float y, const vec4& color) {
    Text* text = new Text(Resources::font_medium, "");
    text->fontSize = size;
    text->setHotSpot(Center);
    text->position = vec3(0.5f * (float)Orvel::getScreenWidth(), y, 0.0f);
    text->color = color;
    return text;
}

} // namespace

int64_t (*GameOverScreen::wallClock)() = systemClock;

GameOverScreen::GameOverScreen(const std::string& scoresPath)
    : defaultName(PlayerName::login()), file(scoresPath.empty() ? nullptr : new ScoreFile(scoresPath)),
      current(WAITING), finished(), shown(), entryRank(-1), entry(nullptr), inputFrom(0), root(nullptr),
      summary(nullptr), hint(nullptr), view(nullptr) {}

GameOverScreen::~GameOverScreen() {
    reset();
    delete file;
}

void GameOverScreen::update() {
    if (!g_game) return;
    switch (current) {
    case WAITING:
        if (!g_game->running && (float)Orvel::currentTime >= g_game->gameOverEnd) showResult();
        break;
    case NAME_ENTRY:
        typeName();
        // The pad's Start holds Return in the frame's keys without typing it.
        if (current == NAME_ENTRY && (DisplaySwitch::plainReturnPressed() || Orvel::keyPressed(SDLK_KP_ENTER)))
            confirmName();
        break;
    case TABLE:
        if (Orvel::currentTime >= inputFrom && newGameInput()) {
            current = LEAVING;
            g_fader->color = vec4(0, 0, 0, 1);
            g_fader->fadeOut(LEAVE_FADE_MS);
        }
        break;
    case LEAVING:
        break;
    }
}

void GameOverScreen::showResult() {
    finished = ScoreEntry();
    finished.name = defaultName;
    const int score = g_game->scoreCounter ? g_game->scoreCounter->value : 0;
    finished.score = score > 0 ? (uint32_t)score : 0;
    finished.wave = g_game->wave > 0 ? (uint32_t)g_game->wave : 0;
    finished.when = wallClock();
    if (file) {
        // The game's recording is finished by now: it ends with the game, before Game Over fades in.
        const bool recorded = g_lastReplay && !g_lastReplay->recording();
        shown = recorded ? file->record(finished, g_lastReplay->recorderInUse().file().bytes(), entryRank)
                         : file->record(finished, entryRank);
    } else {
        entryRank = shown.add(finished);
    }

    root = new DirectScene2D(-1, -1);
    root->debugDraw = false;
    summary = centredText(SUMMARY_SIZE, SUMMARY_Y, vec4(1, 1, 1, 1));
    char line[64];
    snprintf(line, sizeof line, "Score %u   Wave %u", (unsigned)finished.score, (unsigned)finished.wave);
    summary->setText(line);
    hint = centredText(HINT_SIZE, HINT_Y, HINT_COLOR);
    root->add(summary);
    root->add(hint);
    view = new ScoreTableView(TABLE_TOP);

    if (entryRank >= 0) {
        entry = new NameEntry(defaultName);
        TypedKeys::enable(true);
        current = NAME_ENTRY;
        hint->setText(ENTRY_HINT);
    } else {
        current = TABLE;
        hint->setText(TABLE_HINT);
        inputFrom = Orvel::currentTime + INPUT_GRACE_MS;
    }
    refreshTable();
}

void GameOverScreen::typeName() {
    TypedKeys::Key key;
    bool typed = false;
    while (TypedKeys::take(key)) {
        // Alt+Return switches the display; it does not confirm the name.
        if (key.sym == SDLK_RETURN && DisplaySwitch::altHeld()) continue;
        if (entry->type(key.sym, key.character)) {
            confirmName();
            return;
        }
        typed = true;
    }
    if (typed) refreshTable();
}

void GameOverScreen::confirmName() {
    if (current != NAME_ENTRY) return;
    TypedKeys::enable(false);
    const std::string name = entry->name();
    delete entry;
    entry = nullptr;
    if (name != finished.name) {
        if (file) {
            shown = file->rename(finished, name, entryRank);
        } else {
            entryRank = shown.rename(finished, name);
        }
        finished.name = name;
    }
    current = TABLE;
    hint->setText(TABLE_HINT);
    inputFrom = Orvel::currentTime + INPUT_GRACE_MS;
    refreshTable();
}

void GameOverScreen::refreshTable() {
    if (!entry) {
        view->show(shown, entryRank);
        return;
    }
    std::string typed = entry->text();
    // The cursor stands in the name's column while there is room for another character.
    if (typed.size() < ScoreTable::NAME_MAX) typed += '_';
    view->show(shown, entryRank, typed.c_str());
}

bool GameOverScreen::newGameInput() const {
    return DisplaySwitch::plainReturnPressed() || Orvel::keyPressed(SDLK_SPACE) || Orvel::keyPressed(SDLK_KP_ENTER) ||
           Orvel::mousePressed(1) || Orvel::mousePressed(2) || Orvel::mousePressed(3);
}

void GameOverScreen::draw() {
    if (current == WAITING) return;
    view->draw();
    root->draw();
}

void GameOverScreen::reset() {
    if (entry) TypedKeys::enable(false);
    delete entry;
    entry = nullptr;
    delete view;
    view = nullptr;
    if (root) root->clear();
    delete summary;
    delete hint;
    delete root;
    summary = hint = nullptr;
    root = nullptr;
    current = WAITING;
    entryRank = -1;
    shown = ScoreTable();
}
