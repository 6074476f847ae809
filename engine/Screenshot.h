#pragma once
// Saves what the screen shows as a BMP file.

namespace orvel {

class Screenshot {
public:
    // Reads the front buffer (call it after the buffer swap), turns it right way up and writes
    // a 24-bit BMP of the whole screen. A file that cannot be created or written whole is
    // reported in one line on standard error ("Could not write <file>: <reason>"), and a
    // half-written one is removed.
    static void saveScreenshot(const char* filename);
};

} // namespace orvel
