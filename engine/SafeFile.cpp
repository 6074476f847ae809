#include "engine/SafeFile.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include <dirent.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace orvel {

ssize_t (*SafeFile::writeCall)(int, const void*, size_t) = ::write;

namespace {

const int MOVE_ASIDE_TRIES = 9;
const int LOCK_POLL_MS = 10;

std::string baseOf(const std::string& path) {
    const size_t slash = path.rfind('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

// Writes all of `bytes`, going on after partial writes and interruptions.
bool writeAll(int fd, const std::string& bytes) {
    size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t n = SafeFile::writeCall(fd, bytes.data() + done, bytes.size() - done);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) {
            if (n == 0) errno = EIO;
            return false;
        }
        done += (size_t)n;
    }
    return true;
}

bool syncDirectory(const std::string& dir) {
    const int fd = open(dir.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0) return false;
    const bool synced = fsync(fd) == 0;
    const int saved = errno;
    close(fd);
    errno = saved;
    return synced;
}

} // namespace

SafeFile::ReadStatus SafeFile::read(const std::string& path, size_t limit, std::string& bytes, std::string& error) {
    bytes.clear();
    error.clear();
    // Non-blocking, so that a pipe put in the file's place cannot stall the open.
    const int fd = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0) {
        if (errno == ENOENT) return READ_MISSING;
        error = strerror(errno);
        return READ_FAILED;
    }
    struct stat info {};
    if (fstat(fd, &info) != 0 || !S_ISREG(info.st_mode)) {
        error = S_ISDIR(info.st_mode) ? "Is a directory" : "Not a regular file";
        close(fd);
        return READ_NOT_FILE;
    }
    // One byte past the limit tells a file of exactly `limit` bytes from a longer one.
    bytes.resize(limit + 1);
    size_t got = 0;
    while (got < bytes.size()) {
        const ssize_t n = ::read(fd, &bytes[got], bytes.size() - got);
        if (n < 0 && errno == EINTR) continue;
        if (n < 0) {
            error = strerror(errno);
            close(fd);
            bytes.clear();
            return READ_FAILED;
        }
        if (n == 0) break;
        got += (size_t)n;
    }
    close(fd);
    if (got > limit) {
        bytes.resize(limit);
        return READ_TRUNCATED;
    }
    bytes.resize(got);
    return READ_OK;
}

namespace {

// A file for the new contents in `dir`. Where the file system allows, it has no name until it is
// complete (`named` false), so that a writer killed half-way leaves nothing behind; elsewhere it
// is a hidden file named after `base`, in `name`.
int openTemporary(const std::string& dir, const std::string& base, std::string& name, bool& named) {
    const int unnamed = open(dir.c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, 0600);
    if (unnamed >= 0) {
        named = false;
        return unnamed;
    }
    named = true;
    name = dir + "/." + base + ".XXXXXX";
    return mkostemp(&name[0], O_CLOEXEC);
}

// Removes the hidden names that writers of `base` in `dir` gave their files and did not live to
// rename: the name holds the writer's process id, and that process is gone.
void removeStaleTemporaries(const std::string& dir, const std::string& base) {
    DIR* listing = opendir(dir.c_str());
    if (!listing) return;
    const std::string prefix = "." + base + ".";
    while (const dirent* entry = readdir(listing)) {
        const std::string name = entry->d_name;
        if (name.compare(0, prefix.size(), prefix) != 0) continue;
        char* end = nullptr;
        const long pid = strtol(name.c_str() + prefix.size(), &end, 10);
        if (pid <= 0 || *end != '.' || pid == (long)getpid()) continue;
        if (kill((pid_t)pid, 0) != 0 && errno == ESRCH) unlinkat(dirfd(listing), name.c_str(), 0);
    }
    closedir(listing);
}

// Gives the unnamed file `fd` a hidden name beside `base` in `dir`, for the rename.
bool nameTemporary(int fd, const std::string& dir, const std::string& base, std::string& name) {
    const std::string self = "/proc/self/fd/" + std::to_string(fd);
    for (unsigned attempt = 0; attempt < 100; ++attempt) {
        name = dir + "/." + base + "." + std::to_string(getpid()) + "." + std::to_string(attempt);
        if (linkat(AT_FDCWD, self.c_str(), AT_FDCWD, name.c_str(), AT_SYMLINK_FOLLOW) == 0) return true;
        if (errno != EEXIST) return false;
    }
    return false;
}

} // namespace

std::string SafeFile::directoryOf(const std::string& path) {
    const size_t slash = path.rfind('/');
    if (slash == std::string::npos) return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

bool SafeFile::replace(const std::string& path, const std::string& bytes, std::string& error) {
    const std::string dir = directoryOf(path);
    const std::string base = baseOf(path);
    std::string temporary;
    bool named = false;
    const int fd = openTemporary(dir, base, temporary, named);
    if (fd < 0) {
        error = strerror(errno);
        return false;
    }
    struct stat existing {};
    const mode_t mode = stat(path.c_str(), &existing) == 0 && S_ISREG(existing.st_mode) ? existing.st_mode & 07777 : 0600;
    bool done = fchmod(fd, mode) == 0 && writeAll(fd, bytes) && fsync(fd) == 0;
    if (done && !named) {
        removeStaleTemporaries(dir, base);
        done = named = nameTemporary(fd, dir, base, temporary);
    }
    int saved = errno;
    // A close that fails can mean that the data never reached the disk.
    if (close(fd) != 0 && done) {
        done = false;
        saved = errno;
    }
    if (done && rename(temporary.c_str(), path.c_str()) == 0) {
        // The rename is on the disk once the directory is; a failure here leaves the new file in
        // place, only maybe not yet durable, so it is not reported.
        syncDirectory(dir);
        return true;
    }
    if (done) saved = errno;
    if (named) unlink(temporary.c_str());
    error = strerror(saved);
    return false;
}

bool SafeFile::replaceMovingAside(const std::string& path, const std::string& bytes, bool& damaged,
                                  std::string& error) {
    if (damaged) {
        if (moveAside(path).empty()) {
            error = "the damaged file could not be moved aside";
            return false;
        }
        damaged = false;
    }
    return replace(path, bytes, error);
}

std::string SafeFile::moveAside(const std::string& path) {
    for (int i = 1; i <= MOVE_ASIDE_TRIES; ++i) {
        const std::string aside = path + ".bad" + (i == 1 ? "" : "." + std::to_string(i));
        if (rename(path.c_str(), aside.c_str()) == 0) {
            syncDirectory(directoryOf(path));
            return aside;
        }
        // Taken by a directory that is not empty, or by a file where a directory is moved.
        if (errno != EEXIST && errno != ENOTEMPTY && errno != EISDIR && errno != ENOTDIR) return "";
    }
    return "";
}

bool SafeFile::makeDirectories(const std::string& dir, std::string& error) {
    error.clear();
    for (size_t slash = dir.find('/', 1);; slash = dir.find('/', slash + 1)) {
        const std::string part = slash == std::string::npos ? dir : dir.substr(0, slash);
        if (!part.empty() && mkdir(part.c_str(), 0700) != 0 && errno != EEXIST) {
            error = strerror(errno);
            return false;
        }
        if (slash == std::string::npos) break;
    }
    struct stat info {};
    if (stat(dir.c_str(), &info) != 0 || !S_ISDIR(info.st_mode)) {
        error = "Not a directory";
        return false;
    }
    return true;
}

SafeFile::Lock::Lock(const std::string& path) : fd(-1), held(false) {
    fd = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (fd < 0) return;
    for (int waited = 0; waited <= LOCK_WAIT_MS; waited += LOCK_POLL_MS) {
        if (flock(fd, LOCK_EX | LOCK_NB) == 0) {
            held = true;
            return;
        }
        if (errno != EWOULDBLOCK && errno != EINTR) return;
        usleep(LOCK_POLL_MS * 1000);
    }
}

SafeFile::Lock::~Lock() {
    // Closing the file lets go of the lock.
    if (fd >= 0) close(fd);
}

} // namespace orvel
