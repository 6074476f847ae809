#include "game/desktop/Settings.h"

#include <cstdio>
#include <cstdlib>

#include "engine/SafeFile.h"
#include "engine/UserDirs.h"

using orvel::SafeFile;

const char* const SettingsFile::HEADER = "nightvector settings 1";

Settings g_settings;

bool Settings::operator==(const Settings& o) const {
    return musicVolume == o.musicVolume && effectsVolume == o.effectsVolume && fullscreen == o.fullscreen &&
           screenShake == o.screenShake && softFlashes == o.softFlashes && frameCap == o.frameCap;
}

namespace {

// A whole number from `low` to `high` written in decimal digits alone.
bool readNumber(const std::string& text, int low, int high, int& value) {
    if (text.empty() || text.size() > 9) return false;
    for (char c : text)
        if (c < '0' || c > '9') return false;
    const int n = atoi(text.c_str());
    if (n < low || n > high) return false;
    value = n;
    return true;
}

// One of two words, for false and for true.
bool readChoice(const std::string& text, const char* no, const char* yes, bool& value) {
    if (text == no) value = false;
    else if (text == yes) value = true;
    else return false;
    return true;
}

std::string trimmed(const std::string& s) {
    size_t a = 0, b = s.size();
    while (a < b && (s[a] == ' ' || s[a] == '\t' || s[a] == '\r')) ++a;
    while (b > a && (s[b - 1] == ' ' || s[b - 1] == '\t' || s[b - 1] == '\r')) --b;
    return s.substr(a, b - a);
}

// Reads `value` into the setting named `key`; false when the value is bad, with `known` false
// when no setting has that name.
bool readSetting(const std::string& key, const std::string& value, Settings& s, bool& known) {
    known = true;
    if (key == "music-volume") return readNumber(value, 0, Settings::VOLUME_MAX, s.musicVolume);
    if (key == "effects-volume") return readNumber(value, 0, Settings::VOLUME_MAX, s.effectsVolume);
    if (key == "display") return readChoice(value, "window", "fullscreen", s.fullscreen);
    if (key == "screen-shake") return readChoice(value, "off", "on", s.screenShake);
    if (key == "flashes") return readChoice(value, "full", "soft", s.softFlashes);
    if (key == "frame-cap") {
        if (value == "display") {
            s.frameCap = Settings::FRAME_CAP_DISPLAY;
            return true;
        }
        return readNumber(value, 0, Settings::FRAME_CAP_MAX, s.frameCap);
    }
    known = false;
    return false;
}

// A line for the problems, with at most 40 characters of what the file held.
std::string quoted(const std::string& text) {
    std::string shown;
    for (char c : text.substr(0, 40)) shown += (unsigned char)c < 32 || (unsigned char)c > 126 ? '?' : c;
    return "'" + shown + (text.size() > 40 ? "...'" : "'");
}

} // namespace

std::string SettingsFile::defaultPath() {
    const std::string config = orvel::UserDirs::configHome();
    return config.empty() ? "" : config + "/nightvector/settings";
}

SettingsFile::SettingsFile(const std::string& path) : path(path), damaged(false) {}

std::string SettingsFile::format(const Settings& s) {
    std::string text = std::string(HEADER) + "\n";
    text += "music-volume = " + std::to_string(s.musicVolume) + "\n";
    text += "effects-volume = " + std::to_string(s.effectsVolume) + "\n";
    text += std::string("display = ") + (s.fullscreen ? "fullscreen" : "window") + "\n";
    text += std::string("screen-shake = ") + (s.screenShake ? "on" : "off") + "\n";
    text += std::string("flashes = ") + (s.softFlashes ? "soft" : "full") + "\n";
    text += "frame-cap = " + (s.frameCap == Settings::FRAME_CAP_DISPLAY ? std::string("display")
                                                                       : std::to_string(s.frameCap)) + "\n";
    return text;
}

Settings SettingsFile::parse(const std::string& text, std::string& problems) {
    Settings s;
    problems.clear();
    size_t start = 0;
    unsigned number = 0;
    while (start < text.size()) {
        size_t end = text.find('\n', start);
        if (end == std::string::npos) end = text.size();
        const std::string line = trimmed(text.substr(start, end - start));
        start = end + 1;
        ++number;
        if (number == 1) {
            if (line != HEADER) problems += "line 1 is not \"" + std::string(HEADER) + "\"\n";
            if (line == HEADER) continue;
        }
        if (line.empty() || line[0] == '#') continue;
        const size_t eq = line.find('=');
        if (eq == std::string::npos) {
            problems += "line " + std::to_string(number) + " is not a setting: " + quoted(line) + "\n";
            continue;
        }
        const std::string key = trimmed(line.substr(0, eq)), value = trimmed(line.substr(eq + 1));
        // A value is written only when it reads whole, so a bad one leaves what was there.
        bool known = false;
        if (readSetting(key, value, s, known)) continue;
        if (!known) {
            problems += "line " + std::to_string(number) + ": unknown setting " + quoted(key) + "\n";
        } else {
            problems += "line " + std::to_string(number) + ": bad value " + quoted(value) + " for " + key +
                        ", the default is kept\n";
        }
    }
    return s;
}

Settings SettingsFile::load() {
    damaged = false;
    std::string bytes, error;
    const SafeFile::ReadStatus status = SafeFile::read(path, READ_LIMIT, bytes, error);
    if (status == SafeFile::READ_MISSING) return Settings();
    std::string problems;
    Settings s;
    if (status == SafeFile::READ_NOT_FILE || status == SafeFile::READ_FAILED) {
        problems = "cannot be read (" + error + "), the defaults are used\n";
    } else {
        s = parse(bytes, problems);
        if (status == SafeFile::READ_TRUNCATED)
            problems += "is longer than " + std::to_string(READ_LIMIT / 1024) + " KiB; only its start was read\n";
    }
    if (problems.empty()) return s;
    damaged = true;
    // One line for each problem, but a foreign or junk file gets a few and a count, not a flood.
    size_t at = 0;
    unsigned shown = 0, more = 0;
    while (at < problems.size()) {
        const size_t end = problems.find('\n', at);
        if (shown < MESSAGES_MAX) {
            fprintf(stderr, "Settings file %s: %s\n", path.c_str(), problems.substr(at, end - at).c_str());
            ++shown;
        } else {
            ++more;
        }
        at = end + 1;
    }
    if (more > 0)
        fprintf(stderr, "Settings file %s: %u more problem%s not shown\n", path.c_str(), more, more == 1 ? "" : "s");
    return s;
}

bool SettingsFile::save(const Settings& settings) {
    std::string error;
    if (!SafeFile::makeDirectories(SafeFile::directoryOf(path), error)) {
        fprintf(stderr, "Could not save the settings to %s: %s\n", path.c_str(), error.c_str());
        return false;
    }
    SafeFile::Lock lock(path + ".lock");
    if (!SafeFile::replaceMovingAside(path, format(settings), damaged, error)) {
        fprintf(stderr, "Could not save the settings to %s: %s\n", path.c_str(), error.c_str());
        return false;
    }
    return true;
}
