#pragma once
// The player's settings and the file that keeps them: volumes, window or full screen, screen
// shake, flashes and the frame cap. Without a file every setting is as the game has always been.

#include <string>

struct Settings {
    static constexpr int VOLUME_MAX = 10;
    // The frame cap that follows the display's refresh rate.
    static constexpr int FRAME_CAP_DISPLAY = -1;
    static constexpr int FRAME_CAP_MAX = 1000;

    int musicVolume = VOLUME_MAX;   // 0 to VOLUME_MAX
    int effectsVolume = VOLUME_MAX; // 0 to VOLUME_MAX
    bool fullscreen = true;
    bool screenShake = true;
    bool softFlashes = false; // full-screen flashes at most 30 % and three a second
    // Frames a second at most where the display does not pace them: FRAME_CAP_DISPLAY, 0 for
    // none, or 1 to FRAME_CAP_MAX.
    int frameCap = FRAME_CAP_DISPLAY;

    bool operator==(const Settings& other) const;
    bool operator!=(const Settings& other) const { return !(*this == other); }
};

// The settings as the file keeps them: read at start-up, changed and saved by the player. The
// command line's choices for a run are not written into them.
extern Settings g_settings;

class SettingsFile {
public:
    // Bytes read at most: a longer file is damaged, and its first part is read.
    static const size_t READ_LIMIT = 16 * 1024;
    // Lines about a damaged file at most, before one that counts the rest.
    static const unsigned MESSAGES_MAX = 5;
    // The first line of the file: what it holds and in which version of the format.
    static const char* const HEADER;

    // $XDG_CONFIG_HOME/nightvector/settings (~/.config/nightvector/settings); "" without a home.
    static std::string defaultPath();

    explicit SettingsFile(const std::string& path);

    // The settings the file holds; the defaults for what it does not say. A line that is not a
    // setting, an unknown key or a bad value gets one line on standard error and leaves that
    // setting at its default (at most MESSAGES_MAX such lines and a count of the rest); the file
    // is then damaged, and the next save moves it aside (to settings.bad) first.
    Settings load();
    // Writes `settings` in place of the file, safely; false with one line on standard error when
    // it could not.
    bool save(const Settings& settings);

    // The file's text for `settings`.
    static std::string format(const Settings& settings);
    // The settings `text` holds, from the defaults; `problems` receives one line for each thing
    // that could not be read (without the file's name), in the order met.
    static Settings parse(const std::string& text, std::string& problems);

    const std::string& filePath() const { return path; }

private:
    std::string path;
    bool damaged;
};
