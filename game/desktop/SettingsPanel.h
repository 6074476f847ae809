#pragma once
// The settings under the "Paused" lines: music and effects volume, window or full screen, screen
// shake and flashes. Up and Down (W and S, the pad's left stick or d-pad) choose a line, Left and
// Right (A and D) or Return change it; the mouse chooses the line under it, and a left click
// changes it onwards, a right click back. Every change applies at once and is saved; a volume is
// heard as it is set (VolumePreview).

#include <cstdint>
#include <string>

#include "game/desktop/VolumePreview.h"

class DirectScene2D;
class SettingsFile;
class Text;

class SettingsPanel {
public:
    enum Line { MUSIC_VOLUME, EFFECTS_VOLUME, DISPLAY, SCREEN_SHAKE, FLASHES, LINE_COUNT };

    // Screen pixels: the first line's top, the lines' spacing, the glyphs' height, and the panel's
    // edges, which take clicks.
    static constexpr float TOP = 470.0f;
    static constexpr float LINE_STEP = 30.0f;
    static constexpr float FONT_SIZE = 20.0f;
    static constexpr float LEFT = 440.0f;
    static constexpr float RIGHT = 840.0f;
    static constexpr float LABEL_X = 460.0f;
    static constexpr float VALUE_X = 700.0f;

    // Changes are saved to `file`, unless it is null.
    explicit SettingsPanel(SettingsFile* file);
    ~SettingsPanel();
    SettingsPanel(const SettingsPanel&) = delete;
    SettingsPanel& operator=(const SettingsPanel&) = delete;

    // Once a paused frame, at SDL's tick count `realNow`: the keys, the pointer and the buttons.
    // True when the panel changed (a line chosen or a setting changed), so the picture has to be
    // drawn again.
    bool update(uint32_t realNow);
    // The pause ended: a volume being heard stops being one.
    void pauseEnded() { preview.stop(); }
    const VolumePreview& volumePreview() const { return preview; }
    // Whether the screen point (x, y) is on the panel.
    static bool contains(int x, int y);
    // The line at screen height y, or -1.
    static int lineAt(int x, int y);

    // Draws the lines over the frame drawn so far.
    void draw();

    int chosen() const { return current; }
    // The value shown on `line`, as drawn.
    static std::string valueText(Line line);
    static const char* label(Line line);

private:
    // Moves the setting on `line` by `step` (volumes) or flips it, applies and saves it.
    void change(Line line, int step, uint32_t realNow);
    void build();

    SettingsFile* file;
    VolumePreview preview;
    int current;
    DirectScene2D* root;
    Text* labels[LINE_COUNT];
    Text* values[LINE_COUNT];
};
