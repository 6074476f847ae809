#pragma once
// The top-ten table of best games: ranking, the cut at ten, and the text the scores file holds.

#include <cstdint>
#include <string>
#include <vector>

struct ScoreEntry {
    std::string name; // 1 to NAME_MAX letters, digits, spaces, '-' and '_'
    uint32_t score = 0;
    uint32_t wave = 0;    // the wave the game ended in
    int64_t when = 0;     // seconds since 1970 (UTC) when the game ended
    std::string replay;   // the file in the replays directory that shows the game; "" when none
};

class ScoreTable {
public:
    static const unsigned SIZE = 10;
    static const unsigned NAME_MAX = 12;
    static const unsigned REPLAY_NAME_MAX = 64;
    // The first line of the file: what it holds and in which version of the format.
    static const char* const HEADER;
    // The first line of files written before entries had replays; their entries read as well.
    static const char* const HEADER_WITHOUT_REPLAYS;

    // Best first; of two equal scores the one that came first keeps the higher rank.
    const std::vector<ScoreEntry>& entries() const { return list; }

    // Puts `entry` in its place: after every entry with a score as high or higher. Its rank from
    // 0, or -1 when it does not make the ten (the table is then unchanged).
    int add(const ScoreEntry& entry);
    // Gives the first entry equal to `entry` (name, score, wave and time) the name `name`. Its
    // rank from 0, or -1 when no entry is equal (the table is then unchanged).
    int rename(const ScoreEntry& entry, const std::string& name);
    // Links the entry at `rank` (from 0) to the replay file `replay` ("" for none).
    void linkReplay(unsigned rank, const std::string& replay);
    // Whether a game of `score` would enter the table.
    bool qualifies(uint32_t score) const;
    // Adds every entry of `other`, in its order, after the equal scores already here.
    void merge(const ScoreTable& other);

    // The file's text: HEADER, then one line per entry.
    std::string format() const;
    // One entry's line, without its line break: score, wave, time, replay ("-" for none) and
    // name, tab-separated.
    static std::string formatLine(const ScoreEntry& entry);

    // What parse found in a text.
    struct Reading {
        bool knownHeader = false; // the first line is HEADER or HEADER_WITHOUT_REPLAYS
        unsigned kept = 0;        // lines read as entries
        unsigned skipped = 0;     // lines that were not entries (the header not counted)
        bool damaged() const { return !knownHeader || skipped > 0; }
    };
    // Reads the entries of `text` into a new table. A line that does not read whole as an entry
    // is skipped; the entries that read are kept, ranked as add would rank them.
    static ScoreTable parse(const std::string& text, Reading& reading);
    // Reads one line; false, with `entry` unspecified, unless it is an entry as formatLine writes,
    // or one of the older files' score, wave, time and name (which has no replay).
    static bool parseLine(const std::string& line, ScoreEntry& entry);
    // Whether `name` is one a table may hold.
    static bool isValidName(const std::string& name);
    // Whether `name` may name a replay of the table: a plain file name in the replays directory,
    // lower-case letters, digits and '-' before ".nvr", and never the last game's "last.nvr".
    static bool isValidReplayName(const std::string& name);
    // Whether `c` may stand in a name.
    static bool isNameCharacter(char c);

private:
    std::vector<ScoreEntry> list;
};
