#include "tests/support/FileChecks.h"

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <sstream>
#include <vector>

#include <dirent.h>
#include <unistd.h>

namespace testing_support {

std::string fileContents(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::stringstream all;
    all << in.rdbuf();
    return all.str();
}

void writeFileContents(const std::string& path, const std::string& bytes) {
    std::ofstream out(path, std::ios::binary);
    out << bytes;
}

std::string directoryListing(const std::string& dir, const std::string& skip) {
    std::vector<std::string> names;
    if (DIR* d = opendir(dir.c_str())) {
        while (const dirent* entry = readdir(d)) {
            const std::string name = entry->d_name;
            if (name != "." && name != ".." && name != skip) names.push_back(name);
        }
        closedir(d);
    }
    std::sort(names.begin(), names.end());
    std::string listing;
    for (const std::string& name : names) listing += name + " ";
    return listing;
}

ssize_t writeHalfThenDiskFull(int fd, const void* data, size_t size) {
    static bool wroteHalf = false;
    if (!wroteHalf && size > 1) {
        wroteHalf = true;
        return ::write(fd, data, size / 2);
    }
    wroteHalf = false;
    errno = ENOSPC;
    return -1;
}

} // namespace testing_support
