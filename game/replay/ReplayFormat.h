#pragma once
// The replay file: what drove a game, frame by frame, written and read back.
//
// A file is the four bytes "NVRP", then chunks. A chunk is a tag byte, the length of its payload
// as a variable-length integer (seven bits a byte, low bits first, the top bit set on every byte
// but the last), the payload, and the payload's CRC-32, little-endian. The header chunk ('H')
// comes first; frame chunks ('F') of at most FRAMES_PER_CHUNK frames follow, each frame coded as
// its changes from the one before, starting from a frame of zeros in every chunk so that a chunk
// reads on its own; the end chunk ('E') closes the file with the frame count and the result.
// Reading checks all of it before anything is played.

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace replay {

// The format this game writes and reads.
const uint32_t FORMAT = 1;
const size_t FRAMES_PER_CHUNK = 1024;
// Limits a damaged or foreign file cannot make the reader exceed.
const size_t MAX_FILE_BYTES = 64u << 20;
const size_t MAX_GAME_VERSION = 64;
// The longest time step a frame may carry, in ms. A game's frames are a few ms apart, a stalled
// or suspended machine's seconds to minutes; a step of days could make the game work for hours
// in one update (an emitter makes its particles for every ms it missed).
const uint32_t MAX_STEP_MS = 3600000;

// Bits of ReplayFrame::keys.
const uint8_t KEY_W = 1, KEY_A = 2, KEY_S = 4, KEY_D = 8;

struct Header {
    uint32_t format = FORMAT;
    std::string gameVersion;
    uint32_t seed = 0; // the session's random seed
    uint16_t screenWidth = 0, screenHeight = 0;
    bool screenShake = true;
    bool softFlashes = false;
};

// The input and the time step one update of the game read.
struct Frame {
    uint32_t time = 0; // Orvel::currentTime
    uint32_t sync = 0; // Orvel::sync
    uint8_t keys = 0;  // KEY_W ... KEY_D held
    uint8_t buttons = 0; // 1 << b for each mouse button b held
    int16_t mouseX = 0, mouseY = 0;
    bool hasHash = false; // the game's state hash after this update is recorded
    uint64_t hash = 0;

    bool operator==(const Frame& o) const {
        return time == o.time && sync == o.sync && keys == o.keys && buttons == o.buttons && mouseX == o.mouseX &&
               mouseY == o.mouseY && hasHash == o.hasHash && (!hasHash || hash == o.hash);
    }
};

// How the game ended, or stood when it was left.
struct Result {
    int64_t score = 0;
    int32_t wave = 0;
    int32_t lives = 0;
};

struct Replay {
    Header header;
    std::vector<Frame> frames;
    Result result;
};

// CRC-32 as zip and PNG compute it (the reflected polynomial 0xEDB88320), continued from `crc`.
uint32_t crc32(const uint8_t* data, size_t size, uint32_t crc = 0);

// Builds a replay file in memory: the header, then the frames one by one, then the result.
// Memory grows in steps of at least GROWTH bytes, so nearly every frame allocates nothing.
class Writer {
public:
    static const size_t GROWTH = 64u << 10;

    Writer();
    // Starts a new file; what was written before is dropped.
    void begin(const Header& header);
    void add(const Frame& frame);
    // Closes the last chunk and adds the end chunk; the file is then bytes().
    void finish(const Result& result);
    const std::vector<uint8_t>& bytes() const { return out; }
    size_t frameCount() const { return frames; }

private:
    void closeChunk();

    std::vector<uint8_t> out;
    std::vector<uint8_t> chunk; // the frames of the open frame chunk
    size_t chunkFrames;
    size_t frames;
    Frame last;        // the frame before, as the next one is coded against it
    uint32_t lastStep; // its time step
};

// The file of a whole replay at once, as a Writer given its header, frames and result makes it:
// what read() takes apart.
std::vector<uint8_t> write(const Replay& replay);

// Reads a whole replay file from `data`. False, with the reason in `error` (one short phrase such
// as "not a Nightvector replay" or "cut short"), when any part of it is wrong; `replay` is then
// left empty.
bool read(const uint8_t* data, size_t size, Replay& replay, std::string& error);

} // namespace replay
