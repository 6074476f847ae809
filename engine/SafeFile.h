#pragma once
// The one way the player's files (scores, settings, replays) are read and written: read with a
// size limit, never blocking on what is not a plain file; replaced whole through a temporary file
// in the same directory, so that a crash or a power cut at any moment leaves the old file or the
// new one; and read-merge-write cycles of several processes kept apart by an advisory lock.

#include <cstddef>
#include <string>

#include <sys/types.h>

namespace orvel {

class SafeFile {
public:
    SafeFile() = delete;

    enum ReadStatus {
        READ_OK,        // the whole file is in `bytes`
        READ_MISSING,   // there is no file of that name
        READ_TRUNCATED, // longer than the limit: `bytes` holds its first `limit` bytes
        READ_NOT_FILE,  // a directory, a device or a pipe stands there; nothing was read
        READ_FAILED,    // it could not be opened or read (`error` says why)
    };

    // Reads at most `limit` bytes of `path` into `bytes` (emptied first). Follows symbolic links;
    // a loop of them is READ_FAILED.
    static ReadStatus read(const std::string& path, size_t limit, std::string& bytes, std::string& error);

    // Replaces `path` with `bytes`: written to a temporary file beside it, flushed to the disk,
    // renamed over `path`, and the directory flushed. An existing file keeps its permissions, a
    // new one is readable and writable by the player alone. False with `error` set ("No space
    // left on device") when any step failed; `path` is then as it was and no temporary file stays.
    static bool replace(const std::string& path, const std::string& bytes, std::string& error);

    // replace(), with a damaged original first moved aside (moveAside) when `damaged` is set;
    // `damaged` is cleared once it is. False with `error` set when either step failed ("the
    // damaged file could not be moved aside", or replace's reason).
    static bool replaceMovingAside(const std::string& path, const std::string& bytes, bool& damaged,
                                   std::string& error);

    // Moves `path` aside to `path`.bad (or .bad.2 to .bad.9 where those are taken by something
    // that cannot be replaced), whatever it is. The new name, or "" when it could not be moved.
    static std::string moveAside(const std::string& path);

    // Makes `dir` and every missing parent, readable by the player alone. False with `error`
    // set when it does not exist afterwards as a directory.
    static bool makeDirectories(const std::string& dir, std::string& error);
    // The directory `path` names a file in: "." for a bare name, "/" for one in the root.
    static std::string directoryOf(const std::string& path);

    // The write(2) the temporary file is written with; tests put in one that fails.
    static ssize_t (*writeCall)(int fd, const void* data, size_t size);

    // An exclusive advisory lock (flock) on the file `path`, created if missing, held while the
    // object lives. Waits at most LOCK_WAIT_MS for another holder; a lock that cannot be had in
    // that time, or on a file that cannot be created, is not held (`isHeld` is false) and the
    // caller goes on without it: never a hang.
    class Lock {
    public:
        static const int LOCK_WAIT_MS = 3000;

        explicit Lock(const std::string& path);
        ~Lock();
        Lock(const Lock&) = delete;
        Lock& operator=(const Lock&) = delete;

        bool isHeld() const { return held; }

    private:
        int fd;
        bool held;
    };
};

} // namespace orvel
