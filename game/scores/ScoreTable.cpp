#include "game/scores/ScoreTable.h"

#include <cerrno>
#include <cstdlib>

const char* const ScoreTable::HEADER = "nightvector scores 2";
const char* const ScoreTable::HEADER_WITHOUT_REPLAYS = "nightvector scores 1";

namespace {

const char SEPARATOR = '\t';
// The replay field of an entry without one.
const char* const NO_REPLAY = "-";
const std::string REPLAY_SUFFIX = ".nvr";

// A decimal number of digits alone, with no sign, no spaces and no leading zeros, at most `max`.
bool readNumber(const std::string& field, uint64_t max, uint64_t& value) {
    if (field.empty() || field.size() > 20) return false;
    if (field.size() > 1 && field[0] == '0') return false;
    value = 0;
    for (char c : field) {
        if (c < '0' || c > '9') return false;
        const uint64_t digit = (uint64_t)(c - '0');
        if (value > (max - digit) / 10) return false;
        value = value * 10 + digit;
    }
    return true;
}

} // namespace

bool ScoreTable::isNameCharacter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == ' ' || c == '-' ||
           c == '_';
}

bool ScoreTable::isValidName(const std::string& name) {
    if (name.empty() || name.size() > NAME_MAX) return false;
    for (char c : name)
        if (!isNameCharacter(c)) return false;
    return true;
}

bool ScoreTable::isValidReplayName(const std::string& name) {
    if (name.size() <= REPLAY_SUFFIX.size() || name.size() > REPLAY_NAME_MAX) return false;
    const size_t stem = name.size() - REPLAY_SUFFIX.size();
    if (name.compare(stem, std::string::npos, REPLAY_SUFFIX) != 0 || name == "last.nvr") return false;
    for (size_t i = 0; i < stem; ++i) {
        const char c = name[i];
        if (!((c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-')) return false;
    }
    return true;
}

int ScoreTable::add(const ScoreEntry& entry) {
    size_t place = 0;
    while (place < list.size() && list[place].score >= entry.score) ++place;
    if (place >= SIZE) return -1;
    list.insert(list.begin() + (long)place, entry);
    if (list.size() > SIZE) list.resize(SIZE);
    return (int)place;
}

int ScoreTable::rename(const ScoreEntry& entry, const std::string& name) {
    for (size_t i = 0; i < list.size(); ++i) {
        ScoreEntry& held = list[i];
        if (held.name == entry.name && held.score == entry.score && held.wave == entry.wave &&
            held.when == entry.when) {
            held.name = name;
            return (int)i;
        }
    }
    return -1;
}

void ScoreTable::linkReplay(unsigned rank, const std::string& replay) {
    if (rank < list.size()) list[rank].replay = replay;
}

bool ScoreTable::qualifies(uint32_t score) const { return list.size() < SIZE || score > list.back().score; }

void ScoreTable::merge(const ScoreTable& other) {
    for (const ScoreEntry& entry : other.list) add(entry);
}

std::string ScoreTable::formatLine(const ScoreEntry& entry) {
    return std::to_string(entry.score) + SEPARATOR + std::to_string(entry.wave) + SEPARATOR +
           std::to_string(entry.when) + SEPARATOR + (entry.replay.empty() ? NO_REPLAY : entry.replay) + SEPARATOR +
           entry.name;
}

std::string ScoreTable::format() const {
    std::string text = std::string(HEADER) + "\n";
    for (const ScoreEntry& entry : list) text += formatLine(entry) + "\n";
    return text;
}

bool ScoreTable::parseLine(const std::string& line, ScoreEntry& entry) {
    size_t tabs[4];
    size_t count = 0;
    for (size_t at = line.find(SEPARATOR); at != std::string::npos && count < 4; at = line.find(SEPARATOR, at + 1))
        tabs[count++] = at;
    // Three fields before the name in the older files, four (the replay added) in ours.
    if (count < 3) return false;
    const size_t a = tabs[0], b = tabs[1], c = tabs[2];
    const size_t nameStart = (count == 4 ? tabs[3] : c) + 1;
    uint64_t score = 0, wave = 0, when = 0;
    if (!readNumber(line.substr(0, a), UINT32_MAX, score)) return false;
    if (!readNumber(line.substr(a + 1, b - a - 1), UINT32_MAX, wave)) return false;
    if (!readNumber(line.substr(b + 1, c - b - 1), INT64_MAX, when)) return false;
    std::string replay;
    if (count == 4) {
        replay = line.substr(c + 1, tabs[3] - c - 1);
        if (replay == NO_REPLAY)
            replay.clear();
        else if (!isValidReplayName(replay))
            return false;
    }
    const std::string name = line.substr(nameStart);
    if (!isValidName(name)) return false;
    entry.score = (uint32_t)score;
    entry.wave = (uint32_t)wave;
    entry.when = (int64_t)when;
    entry.replay = replay;
    entry.name = name;
    return true;
}

ScoreTable ScoreTable::parse(const std::string& text, Reading& reading) {
    reading = Reading();
    ScoreTable table;
    size_t start = 0;
    bool first = true;
    while (start < text.size()) {
        size_t end = text.find('\n', start);
        // A last line without its line break was cut short: it is not trusted.
        const bool whole = end != std::string::npos;
        if (!whole) end = text.size();
        const std::string line = text.substr(start, end - start);
        start = end + 1;
        if (first) {
            first = false;
            reading.knownHeader = whole && (line == HEADER || line == HEADER_WITHOUT_REPLAYS);
            if (reading.knownHeader) continue;
        }
        ScoreEntry entry;
        if (whole && parseLine(line, entry)) {
            table.add(entry);
            ++reading.kept;
        } else {
            ++reading.skipped;
        }
    }
    return table;
}
