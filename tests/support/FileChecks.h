#pragma once
// Looking at files from a test: their bytes, what a directory holds, and a disk that fills up.

#include <string>

#include <sys/types.h>

namespace testing_support {

// The whole of the file `path`; "" when it cannot be read.
std::string fileContents(const std::string& path);
// Writes `bytes` as the whole of the file `path`.
void writeFileContents(const std::string& path, const std::string& bytes);
// The names in `dir`, sorted, each followed by one space; ".", ".." and `skip` left out.
std::string directoryListing(const std::string& dir, const std::string& skip = "");
// A write(2) that writes half of what it is asked to, then finds the disk full (ENOSPC) on the
// next call; for SafeFile::writeCall.
ssize_t writeHalfThenDiskFull(int fd, const void* data, size_t size);

} // namespace testing_support
