#pragma once
// Alt+Return: between a window and full screen in any runlevel, the choice kept in the settings.

class SettingsFile;

class DisplaySwitch {
public:
    DisplaySwitch() = delete;

    // Either Alt key is down in this frame's snapshot.
    static bool altHeld();
    // Return pressed this frame without Alt: what starts and confirms things. Alt+Return is the
    // switch alone.
    static bool plainReturnPressed();
    // Alt+Return pressed this frame.
    static bool requested();
    // Switches the display. The new choice goes into g_settings and, unless `file` is null, into
    // the settings file. Where the display refuses, the mode stays and one line says so on
    // standard error; false then.
    static bool toggle(SettingsFile* file);
};
