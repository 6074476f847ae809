#pragma once
// Saves what the screen shows as a BMP file.

namespace orvel {

class Screenshot {
public:
    // Reads the front buffer (call it after the buffer swap), turns it right way up and writes
    // a 24-bit BMP of the whole screen. A file that cannot be created is silently skipped.
    static void saveScreenshot(const char* filename);
};

} // namespace orvel
