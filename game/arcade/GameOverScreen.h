#pragma once
// What follows "Game Over": once the text has faded in, the final score and wave under it, the
// name of a new best game typed into the top-ten table, the table itself, and the way to a new
// game (Return, Space, keypad Enter, a mouse button or the pad's Start). The scores file is
// written as soon as the table is shown, under the login name, so that a game left there with
// Escape or by closing the window is kept; a typed name replaces it when confirmed.

#include <cstdint>
#include <string>

#include "game/scores/NameEntry.h"
#include "game/scores/ScoreTable.h"

class DirectScene2D;
class ScoreFile;
class ScoreTableView;
class Text;

class GameOverScreen {
public:
    enum Phase {
        WAITING,    // no game over yet, or its text still fading in
        NAME_ENTRY, // a new best game: its name being typed in the table
        TABLE,      // the table and the hint; waiting for a new game or Escape
        LEAVING,    // fading to black before the new game
    };

    // ms after the table shows (or the name is confirmed) during which no input starts a new
    // game: a button still held from play, or the Return that confirmed the name, must not.
    static constexpr uint32_t INPUT_GRACE_MS = 300;
    // ms of the fade to black before a new game, as when leaving the intro.
    static constexpr unsigned LEAVE_FADE_MS = 1000;
    // Top of the table's heading, in screen pixels.
    static constexpr float TABLE_TOP = 372.0f;
    // Centre of the summary line and of the hint, in screen pixels.
    static constexpr float SUMMARY_Y = 336.0f;
    static constexpr float HINT_Y = 680.0f;
    static const char* const ENTRY_HINT;
    static const char* const TABLE_HINT;

    // Seconds since 1970 when a game ends; tests put in a clock of their own.
    static int64_t (*wallClock)();

    // Scores kept in the file at `scoresPath`; "" keeps them for this run only.
    explicit GameOverScreen(const std::string& scoresPath);
    ~GameOverScreen();
    GameOverScreen(const GameOverScreen&) = delete;
    GameOverScreen& operator=(const GameOverScreen&) = delete;

    // Once a frame in play, after the game's update: follows g_game's game over. Reads typed keys
    // while a name is entered and the new-game input once the table shows; starts the fade to
    // black for a new game.
    void update();
    // The summary, the table and the hint, over the frame drawn so far; nothing while WAITING.
    void draw();
    // The name being typed, if any, is confirmed and saved as it stands (Escape during entry).
    void confirmName();
    // The fade to black for a new game is over: the screen's texts go and it waits for the next
    // game over.
    void reset();

    Phase phase() const { return current; }
    // The table as last read or written, and the game's rank in it (-1 when it did not enter).
    const ScoreTable& table() const { return shown; }
    int rank() const { return entryRank; }
    // The name entry while a name is typed; null otherwise.
    const NameEntry* nameEntry() const { return entry; }
    // The name a new entry is given until one is typed.
    std::string defaultName;

private:
    void showResult();
    void typeName();
    void refreshTable();
    bool newGameInput() const;

    ScoreFile* file;
    Phase current;
    ScoreEntry finished;
    ScoreTable shown;
    int entryRank;
    NameEntry* entry;
    uint32_t inputFrom; // ms of Orvel::currentTime from which the new-game input counts
    DirectScene2D* root;
    Text* summary;
    Text* hint;
    ScoreTableView* view;
};

extern GameOverScreen* g_gameOver; // made at start-up
