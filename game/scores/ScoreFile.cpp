#include "game/scores/ScoreFile.h"

#include <cstdio>
#include <functional>

#include <sys/stat.h>
#include <unistd.h>

#include "engine/SafeFile.h"
#include "engine/UserDirs.h"

using orvel::SafeFile;

std::string ScoreFile::defaultPath() {
    const std::string data = orvel::UserDirs::dataHome();
    return data.empty() ? "" : data + "/nightvector/scores";
}

ScoreFile::ScoreFile(const std::string& path) : path(path), damageReported(false) {}

ScoreTable ScoreFile::read(bool& damaged) {
    damaged = false;
    std::string bytes, error;
    const SafeFile::ReadStatus status = SafeFile::read(path, READ_LIMIT, bytes, error);
    if (status == SafeFile::READ_MISSING) return ScoreTable();
    ScoreTable::Reading reading;
    const ScoreTable table = ScoreTable::parse(bytes, reading);
    std::string problem;
    if (status == SafeFile::READ_NOT_FILE || status == SafeFile::READ_FAILED)
        problem = "cannot be read (" + error + ")";
    else if (status == SafeFile::READ_TRUNCATED)
        problem = "is longer than " + std::to_string(READ_LIMIT / 1024) + " KiB";
    else if (!reading.knownHeader && !bytes.empty())
        problem = "is not a scores file of this version";
    else if (reading.damaged())
        problem = "has " + std::to_string(reading.skipped) + " damaged line" + (reading.skipped == 1 ? "" : "s");
    else
        return table;
    damaged = true;
    if (!damageReported) {
        damageReported = true;
        fprintf(stderr, "Scores file %s %s: kept %u entr%s; the next score saved moves it to %s.bad\n", path.c_str(),
                problem.c_str(), (unsigned)table.entries().size(), table.entries().size() == 1 ? "y" : "ies",
                path.c_str());
    }
    return table;
}

ScoreTable ScoreFile::load() {
    bool damaged = false;
    return read(damaged);
}

ScoreTable ScoreFile::change(const std::function<bool(ScoreTable&)>& edit) {
    std::string error;
    if (!SafeFile::makeDirectories(SafeFile::directoryOf(path), error)) {
        ScoreTable table = load();
        if (edit(table)) fprintf(stderr, "Could not save the scores to %s: %s\n", path.c_str(), error.c_str());
        return table;
    }
    SafeFile::Lock lock(path + ".lock");
    bool damaged = false;
    const ScoreTable before = read(damaged);
    ScoreTable table = before;
    // An edit that changes nothing leaves the file as it is.
    if (!edit(table)) return table;
    if (SafeFile::replaceMovingAside(path, table.format(), damaged, error)) {
        deleteUnlinked(before, table);
    } else {
        fprintf(stderr, "Could not save the scores to %s: %s\n", path.c_str(), error.c_str());
        deleteUnlinked(table, before);
    }
    return table;
}

std::string ScoreFile::replaysDirectory() const { return SafeFile::directoryOf(path) + "/replays"; }

std::string ScoreFile::keepReplay(const ScoreEntry& entry, const std::vector<uint8_t>& replay) {
    const std::string dir = replaysDirectory();
    const std::string stem = "best-" + std::to_string(entry.when) + "-" + std::to_string(entry.score);
    // A name no file has yet; the lock keeps two games from taking the same one.
    std::string name = stem + ".nvr";
    struct stat existing;
    for (int n = 2; lstat((dir + "/" + name).c_str(), &existing) == 0; ++n)
        name = stem + "-" + std::to_string(n) + ".nvr";
    std::string error;
    if (!SafeFile::makeDirectories(dir, error) ||
        !SafeFile::replace(dir + "/" + name, std::string(replay.begin(), replay.end()), error)) {
        fprintf(stderr, "Could not keep the replay %s/%s: %s\n", dir.c_str(), name.c_str(), error.c_str());
        return "";
    }
    return name;
}

void ScoreFile::deleteUnlinked(const ScoreTable& from, const ScoreTable& to) const {
    for (const ScoreEntry& gone : from.entries()) {
        if (gone.replay.empty()) continue;
        bool linked = false;
        for (const ScoreEntry& kept : to.entries()) linked = linked || kept.replay == gone.replay;
        // A replay that cannot be deleted only takes room: nothing links to it any more.
        if (!linked) unlink((replaysDirectory() + "/" + gone.replay).c_str());
    }
}

ScoreTable ScoreFile::record(const ScoreEntry& entry, int& rank) {
    static const std::vector<uint8_t> noReplay;
    return record(entry, noReplay, rank);
}

ScoreTable ScoreFile::record(const ScoreEntry& entry, const std::vector<uint8_t>& replay, int& rank) {
    return change([&](ScoreTable& table) {
        rank = table.add(entry);
        if (rank < 0) return false;
        if (!replay.empty()) table.linkReplay((unsigned)rank, keepReplay(entry, replay));
        return true;
    });
}

ScoreTable ScoreFile::rename(const ScoreEntry& entry, const std::string& name, int& rank) {
    return change([&](ScoreTable& table) {
        rank = table.rename(entry, name);
        return rank >= 0;
    });
}
