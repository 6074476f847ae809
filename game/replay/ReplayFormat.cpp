#include "game/replay/ReplayFormat.h"

#include <cstring>

namespace replay {

namespace {

const uint8_t MAGIC[4] = {'N', 'V', 'R', 'P'};
const uint8_t TAG_HEADER = 'H', TAG_FRAMES = 'F', TAG_END = 'E';
// The most one frame can take: flags, step, sync, keys, buttons, two mouse moves and a hash.
const size_t MAX_FRAME_BYTES = 1 + 5 + 5 + 1 + 1 + 3 + 3 + 8;
// A chunk's payload can be no longer; a full frame chunk takes at most 27 KiB.
const size_t MAX_PAYLOAD = 64u << 10;

// What a frame carries besides its flags byte.
const uint8_t HAS_STEP = 1, HAS_SYNC = 2, HAS_KEYS = 4, HAS_BUTTONS = 8, HAS_MOUSE_X = 16, HAS_MOUSE_Y = 32,
              HAS_HASH = 64;

uint32_t crcTable[256];

void makeCrcTable() {
    for (uint32_t n = 0; n < 256; ++n) {
        uint32_t c = n;
        for (int k = 0; k < 8; ++k) c = c & 1 ? 0xEDB88320u ^ (c >> 1) : c >> 1;
        crcTable[n] = c;
    }
}

// Writes `v` as a variable-length integer at `to`; the bytes it took, at most 10.
size_t encodeVarint(uint8_t* to, uint64_t v) {
    size_t n = 0;
    while (v >= 0x80) {
        to[n++] = (uint8_t)(v | 0x80);
        v >>= 7;
    }
    to[n++] = (uint8_t)v;
    return n;
}

void putVarint(std::vector<uint8_t>& out, uint64_t v) {
    uint8_t bytes[10];
    out.insert(out.end(), bytes, bytes + encodeVarint(bytes, v));
}

uint64_t zigzag(int64_t v) { return ((uint64_t)v << 1) ^ (uint64_t)(v >> 63); }
int64_t unzigzag(uint64_t v) { return (int64_t)(v >> 1) ^ -(int64_t)(v & 1); }

// A chunk whose payload is `head` and then `body`: its tag, length, payload and check.
void putChunk(std::vector<uint8_t>& out, uint8_t tag, const uint8_t* head, size_t headSize, const uint8_t* body,
              size_t bodySize) {
    out.push_back(tag);
    putVarint(out, headSize + bodySize);
    out.insert(out.end(), head, head + headSize);
    out.insert(out.end(), body, body + bodySize);
    const uint32_t crc = crc32(body, bodySize, crc32(head, headSize));
    for (int i = 0; i < 4; ++i) out.push_back((uint8_t)(crc >> (8 * i)));
}

void putChunk(std::vector<uint8_t>& out, uint8_t tag, const std::vector<uint8_t>& payload) {
    putChunk(out, tag, payload.data(), payload.size(), nullptr, 0);
}

// Reads from a span; every read past its end, or of a value that does not fit, fails the reader
// for good.
class Bytes {
public:
    Bytes(const uint8_t* data, size_t size) : p(data), end(data + size), failed(false) {}

    bool ok() const { return !failed; }
    bool atEnd() const { return p == end; }
    size_t left() const { return (size_t)(end - p); }
    const uint8_t* here() const { return p; }

    uint8_t byte() {
        if (p == end) return fail();
        return *p++;
    }
    uint64_t varint(unsigned maxBytes = 10) {
        uint64_t v = 0;
        for (unsigned i = 0; i < maxBytes; ++i) {
            if (p == end) return fail();
            const uint8_t b = *p++;
            v |= (uint64_t)(b & 0x7f) << (7 * i);
            if (!(b & 0x80)) return v;
        }
        return fail();
    }
    // A varint that must be at most `max`.
    uint64_t varintUpTo(uint64_t max) {
        const uint64_t v = varint();
        return v <= max ? v : fail();
    }
    void skip(size_t n) {
        if (left() < n) {
            fail();
            return;
        }
        p += n;
    }

private:
    uint8_t fail() {
        failed = true;
        p = end;
        return 0;
    }

    const uint8_t* p;
    const uint8_t* end;
    bool failed;
};

// One chunk's framing: its tag, its payload, and whether the payload passes its check. Fails
// the outer reader when the chunk runs past the data.
struct Chunk {
    uint8_t tag = 0;
    const uint8_t* payload = nullptr;
    size_t size = 0;
    bool checked = false;
};

// How a read went wrong: a chunk that ran past the data is "cut short", anything else damage.
enum Trouble { NONE, CUT_SHORT, DAMAGED };

Trouble nextChunk(Bytes& in, Chunk& chunk) {
    if (in.atEnd()) return CUT_SHORT;
    chunk.tag = in.byte();
    // A length that cannot be a chunk's is damage, not a file cut short.
    Bytes probe = in;
    probe.varint(3);
    if (!probe.ok()) return in.left() < 3 ? CUT_SHORT : DAMAGED;
    chunk.size = (size_t)in.varint(3);
    if (chunk.size > MAX_PAYLOAD) return DAMAGED;
    if (in.left() < chunk.size + 4) return CUT_SHORT;
    chunk.payload = in.here();
    in.skip(chunk.size);
    uint32_t stored = 0;
    for (int i = 0; i < 4; ++i) stored |= (uint32_t)in.byte() << (8 * i);
    chunk.checked = crc32(chunk.payload, chunk.size) == stored;
    return chunk.checked ? NONE : DAMAGED;
}

bool readHeader(const Chunk& chunk, Header& header) {
    Bytes in(chunk.payload, chunk.size);
    header.format = (uint32_t)in.varintUpTo(UINT32_MAX);
    const size_t length = (size_t)in.varintUpTo(MAX_GAME_VERSION);
    if (!in.ok() || in.left() < length) return false;
    header.gameVersion.assign((const char*)in.here(), length);
    in.skip(length);
    header.seed = (uint32_t)in.varintUpTo(UINT32_MAX);
    header.screenWidth = (uint16_t)in.varintUpTo(UINT16_MAX);
    header.screenHeight = (uint16_t)in.varintUpTo(UINT16_MAX);
    const uint8_t flags = in.byte();
    header.screenShake = flags & 1;
    header.softFlashes = flags & 2;
    return in.ok() && in.atEnd() && flags <= 3;
}

bool readFrames(const Chunk& chunk, std::vector<Frame>& frames) {
    Bytes in(chunk.payload, chunk.size);
    const size_t count = (size_t)in.varintUpTo(FRAMES_PER_CHUNK);
    if (!in.ok() || count == 0) return false;
    Frame last;
    uint32_t step = 0;
    for (size_t i = 0; i < count; ++i) {
        const uint8_t flags = in.byte();
        if (flags & 0x80) return false;
        Frame f;
        if (flags & HAS_STEP) step = (uint32_t)in.varintUpTo(UINT32_MAX);
        f.time = last.time + step;
        f.sync = flags & HAS_SYNC ? (uint32_t)in.varintUpTo(UINT32_MAX) : step;
        f.keys = flags & HAS_KEYS ? in.byte() : last.keys;
        f.buttons = flags & HAS_BUTTONS ? in.byte() : last.buttons;
        const int64_t x = flags & HAS_MOUSE_X ? last.mouseX + unzigzag(in.varint(3)) : last.mouseX;
        const int64_t y = flags & HAS_MOUSE_Y ? last.mouseY + unzigzag(in.varint(3)) : last.mouseY;
        if (x < INT16_MIN || x > INT16_MAX || y < INT16_MIN || y > INT16_MAX) return false;
        f.mouseX = (int16_t)x;
        f.mouseY = (int16_t)y;
        if (flags & HAS_HASH) {
            f.hasHash = true;
            for (int b = 0; b < 8; ++b) f.hash |= (uint64_t)in.byte() << (8 * b);
        }
        if (!in.ok()) return false;
        frames.push_back(f);
        last = f;
    }
    return in.atEnd();
}

bool readEnd(const Chunk& chunk, size_t frames, Result& result) {
    Bytes in(chunk.payload, chunk.size);
    const uint64_t count = in.varint();
    result.score = unzigzag(in.varint());
    const int64_t wave = unzigzag(in.varint()), lives = unzigzag(in.varint());
    if (!in.ok() || !in.atEnd() || count != frames) return false;
    if (wave < INT32_MIN || wave > INT32_MAX || lives < INT32_MIN || lives > INT32_MAX) return false;
    result.wave = (int32_t)wave;
    result.lives = (int32_t)lives;
    return true;
}

bool failWith(Replay& replay, std::string& error, const std::string& why) {
    replay = Replay();
    error = why;
    return false;
}

} // namespace

uint32_t crc32(const uint8_t* data, size_t size, uint32_t crc) {
    if (crcTable[1] == 0) makeCrcTable();
    crc = ~crc;
    for (size_t i = 0; i < size; ++i) crc = crcTable[(crc ^ data[i]) & 0xff] ^ (crc >> 8);
    return ~crc;
}

Writer::Writer() : chunkFrames(0), frames(0), lastStep(0) {}

void Writer::begin(const Header& header) {
    out.clear();
    out.reserve(GROWTH);
    chunk.clear();
    // Room for a full chunk of the largest frames: it never grows while frames are added.
    chunk.reserve(FRAMES_PER_CHUNK * MAX_FRAME_BYTES);
    chunkFrames = 0;
    frames = 0;
    last = Frame();
    lastStep = 0;
    out.insert(out.end(), MAGIC, MAGIC + 4);
    std::vector<uint8_t> payload;
    putVarint(payload, header.format);
    const size_t length = header.gameVersion.size() < MAX_GAME_VERSION ? header.gameVersion.size() : MAX_GAME_VERSION;
    putVarint(payload, length);
    payload.insert(payload.end(), header.gameVersion.begin(), header.gameVersion.begin() + (long)length);
    putVarint(payload, header.seed);
    putVarint(payload, header.screenWidth);
    putVarint(payload, header.screenHeight);
    payload.push_back((uint8_t)((header.screenShake ? 1 : 0) | (header.softFlashes ? 2 : 0)));
    putChunk(out, TAG_HEADER, payload);
}

void Writer::add(const Frame& f) {
    if (chunkFrames == 0) {
        last = Frame();
        lastStep = 0;
    }
    const uint32_t step = f.time - last.time;
    uint8_t flags = 0;
    if (step != lastStep) flags |= HAS_STEP;
    if (f.sync != step) flags |= HAS_SYNC;
    if (f.keys != last.keys) flags |= HAS_KEYS;
    if (f.buttons != last.buttons) flags |= HAS_BUTTONS;
    if (f.mouseX != last.mouseX) flags |= HAS_MOUSE_X;
    if (f.mouseY != last.mouseY) flags |= HAS_MOUSE_Y;
    if (f.hasHash) flags |= HAS_HASH;
    chunk.push_back(flags);
    if (flags & HAS_STEP) putVarint(chunk, step);
    if (flags & HAS_SYNC) putVarint(chunk, f.sync);
    if (flags & HAS_KEYS) chunk.push_back(f.keys);
    if (flags & HAS_BUTTONS) chunk.push_back(f.buttons);
    if (flags & HAS_MOUSE_X) putVarint(chunk, zigzag((int64_t)f.mouseX - last.mouseX));
    if (flags & HAS_MOUSE_Y) putVarint(chunk, zigzag((int64_t)f.mouseY - last.mouseY));
    if (flags & HAS_HASH)
        for (int b = 0; b < 8; ++b) chunk.push_back((uint8_t)(f.hash >> (8 * b)));
    last = f;
    lastStep = step;
    ++frames;
    if (++chunkFrames == FRAMES_PER_CHUNK) closeChunk();
}

void Writer::closeChunk() {
    if (chunkFrames == 0) return;
    // The frame count goes in front of the frames.
    uint8_t count[10];
    const size_t countSize = encodeVarint(count, chunkFrames);
    const size_t need = 1 + 3 + countSize + chunk.size() + 4;
    if (out.capacity() - out.size() < need) out.reserve(out.size() + need + GROWTH);
    putChunk(out, TAG_FRAMES, count, countSize, chunk.data(), chunk.size());
    chunk.clear();
    chunkFrames = 0;
}

void Writer::finish(const Result& result) {
    closeChunk();
    std::vector<uint8_t> payload;
    putVarint(payload, frames);
    putVarint(payload, zigzag(result.score));
    putVarint(payload, zigzag(result.wave));
    putVarint(payload, zigzag(result.lives));
    putChunk(out, TAG_END, payload);
}

std::vector<uint8_t> write(const Replay& replay) {
    Writer w;
    w.begin(replay.header);
    for (const Frame& f : replay.frames) w.add(f);
    w.finish(replay.result);
    return w.bytes();
}

bool read(const uint8_t* data, size_t size, Replay& replay, std::string& error) {
    replay = Replay();
    if (size > MAX_FILE_BYTES) return failWith(replay, error, "too large to be a replay");
    if (size < 4 || memcmp(data, MAGIC, 4) != 0) return failWith(replay, error, "not a Nightvector replay");
    Bytes in(data + 4, size - 4);
    Chunk chunk;
    Trouble trouble = nextChunk(in, chunk);
    // The format comes first in the header, read even when the rest fails its check: a file of
    // another format is named as such.
    if (chunk.tag == TAG_HEADER && chunk.payload) {
        Bytes format(chunk.payload, chunk.size);
        const uint64_t version = format.varint(5);
        if (format.ok() && version != FORMAT)
            return failWith(replay, error,
                            "made in replay format " + std::to_string(version) + ", and this game reads format " +
                                std::to_string(FORMAT));
    }
    if (trouble == CUT_SHORT) return failWith(replay, error, "cut short");
    if (trouble == DAMAGED || chunk.tag != TAG_HEADER || !readHeader(chunk, replay.header))
        return failWith(replay, error, "damaged (its header does not check)");
    Replay read;
    read.header = replay.header;
    for (;;) {
        trouble = nextChunk(in, chunk);
        if (trouble == CUT_SHORT) return failWith(replay, error, "cut short");
        if (trouble == DAMAGED) return failWith(replay, error, "damaged (a chunk does not check)");
        if (chunk.tag == TAG_END) break;
        if (chunk.tag != TAG_FRAMES || !readFrames(chunk, read.frames))
            return failWith(replay, error, "damaged (its frames do not read)");
    }
    if (!readEnd(chunk, read.frames.size(), read.result) || !in.atEnd())
        return failWith(replay, error, "damaged (its end does not match its frames)");
    // Time runs forwards, in steps the game takes; a step backwards reads as a huge one.
    for (size_t i = 0; i < read.frames.size(); ++i) {
        const bool stepTooLong = i > 0 && read.frames[i].time - read.frames[i - 1].time > MAX_STEP_MS;
        if (stepTooLong || read.frames[i].sync > MAX_STEP_MS)
            return failWith(replay, error, "damaged (a time step of more than an hour)");
    }
    replay = std::move(read);
    return true;
}

} // namespace replay
