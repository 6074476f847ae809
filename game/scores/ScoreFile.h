#pragma once
// The scores file in the player's data directory: the table read from it, and a finished game
// recorded in it without ever losing what it held. Each entry may be linked to the game's replay,
// a file of its own in the replays directory beside the scores file, which goes when the entry
// falls out of the table.

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

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
    // The same, and when the game makes the table, `replay` (a recording of it) is kept as a file
    // of its own in replaysDirectory() and linked from the entry. A replay that cannot be written
    // gets one line on standard error ("Could not keep the replay PATH: REASON"), and the entry is
    // recorded without one.
    ScoreTable record(const ScoreEntry& entry, const std::vector<uint8_t>& replay, int& rank);

    // Gives the entry recorded as `entry` the name `name`, the same way: read again, changed and
    // written under the lock. Returns the table as it now stands; `rank` is the entry's place,
    // or -1 when the file no longer holds it (a better game pushed it out meanwhile), which
    // leaves the file as it is.
    ScoreTable rename(const ScoreEntry& entry, const std::string& name, int& rank);

    const std::string& filePath() const { return path; }
    // Where the entries' replays are kept: "replays" beside the file.
    std::string replaysDirectory() const;

private:
    std::string path;
    bool damageReported;

    // Applies `edit` to the table the file holds now, under the lock, and writes the result when
    // `edit` returns true (moving a damaged original aside first). Once the file is written, the
    // replays of entries that left the table are deleted; when it cannot be, the replays that
    // `edit` linked are. Returns the table as edited.
    ScoreTable change(const std::function<bool(ScoreTable&)>& edit);
    // Writes `replay` under a name of its own for `entry`; "" (and one line on standard error)
    // when it cannot be written.
    std::string keepReplay(const ScoreEntry& entry, const std::vector<uint8_t>& replay);
    // Deletes the replays linked from `from` that `to` does not link.
    void deleteUnlinked(const ScoreTable& from, const ScoreTable& to) const;
    // The table in the file now; `damaged` when the file is there but not wholly ours.
    ScoreTable read(bool& damaged);
};
