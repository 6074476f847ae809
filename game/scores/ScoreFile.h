#pragma once
// The scores file in the player's data directory: the table read from it, and a finished game
// recorded in it without ever losing what it held.

#include <cstddef>
#include <functional>
#include <string>

#include "game/scores/ScoreTable.h"

class ScoreFile {
public:
    // Bytes read at most: a longer file is damaged, and its first part is read for entries.
    static const size_t READ_LIMIT = 64 * 1024;

    // $XDG_DATA_HOME/nightvector/scores (~/.local/share/nightvector/scores); "" without a home.
    static std::string defaultPath();

    // The file at `path`; nothing is read or written yet.
    explicit ScoreFile(const std::string& path);

    // The table the file holds; empty when there is none. A file that is damaged (foreign text,
    // lines that are not entries, too long, not a file, unreadable) gives the entries that read,
    // and one line on standard error, once for this object.
    ScoreTable load();

    // Records a finished game. Under the lock, so that two games ending at once both count: the
    // file is read again, the entry added, a damaged original moved aside (to scores.bad), and
    // the new table written in place of the old. Returns the table as it now stands, also when
    // it could not be written (one line on standard error then); `rank` is the entry's place
    // from 0, or -1 when it did not make the table.
    ScoreTable record(const ScoreEntry& entry, int& rank);

    // Gives the entry recorded as `entry` the name `name`, the same way: read again, changed and
    // written under the lock. Returns the table as it now stands; `rank` is the entry's place,
    // or -1 when the file no longer holds it (a better game pushed it out meanwhile), which
    // leaves the file as it is.
    ScoreTable rename(const ScoreEntry& entry, const std::string& name, int& rank);

    const std::string& filePath() const { return path; }

private:
    std::string path;
    bool damageReported;

    // Applies `edit` to the table the file holds now, under the lock, and writes the result when
    // `edit` returns true (moving a damaged original aside first). Returns the table as edited.
    ScoreTable change(const std::function<bool(ScoreTable&)>& edit);
    // The table in the file now; `damaged` when the file is there but not wholly ours.
    ScoreTable read(bool& damaged);
};
