#pragma once
// An X client beside the game that reads the whole screen's pixels every 2 ms, as a screen
// recorder or a desktop thumbnailer does: it keeps the X server busy and the game's swaps waiting.

#include <atomic>
#include <thread>

namespace e2e {

class ScreenReader {
public:
    // Starts reading on a thread and an X connection of its own (DISPLAY).
    ScreenReader();
    // Stops and joins the thread.
    ~ScreenReader();
    ScreenReader(const ScreenReader&) = delete;
    ScreenReader& operator=(const ScreenReader&) = delete;

    // Whole-screen images read so far; 0 when the display could not be opened.
    long reads() const { return count.load(); }

private:
    std::atomic<bool> running{true};
    std::atomic<long> count{0};
    std::thread reader;
    void run();
};

} // namespace e2e
