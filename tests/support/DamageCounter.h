#pragma once
// Counts the pictures an X server receives, through its DAMAGE extension: every request that
// changes the screen (a buffer swap of a software-rendered GL window is one) is one report.

struct _XDisplay;

namespace e2e {

class DamageCounter {
public:
    // Watches the whole screen of the display DISPLAY names.
    DamageCounter();
    ~DamageCounter();
    DamageCounter(const DamageCounter&) = delete;
    DamageCounter& operator=(const DamageCounter&) = delete;

    // Whether the display and the extension are there.
    bool ok() const { return display != nullptr; }
    // The requests that changed the screen over the next `ms` milliseconds; -1 when not ok().
    int countFor(int ms);

private:
    ::_XDisplay* display;
    unsigned long damage;
    int eventBase;
};

} // namespace e2e
