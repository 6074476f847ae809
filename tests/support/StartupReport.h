#pragma once
// The game's start-up report worked out from the image files: their sizes as their PNG headers
// give them and the texture memory line that follows the loading lines.

#include <cstdio>
#include <fstream>
#include <iterator>
#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/GameProcess.h"
#include "tests/support/ResourceFiles.h"

namespace e2e {

struct ImageSize {
    unsigned w, h;
};

// Width and height from a PNG's header chunk.
inline bool pngSize(const std::string& path, ImageSize& size) {
    std::ifstream in(path, std::ios::binary);
    unsigned char header[24];
    if (!in.read(reinterpret_cast<char*>(header), sizeof header)) return false;
    size.w = header[16] << 24 | header[17] << 16 | header[18] << 8 | header[19];
    size.h = header[20] << 24 | header[21] << 16 | header[22] << 8 | header[23];
    return true;
}

inline unsigned nextPow2(unsigned n) {
    unsigned p = 1;
    while (p < n) p *= 2;
    return p;
}

// The memory report when the images have the sizes of DATA_ROOT's files except those in `sizes`;
// a file that fails to load is given 0 x 0, as it leaves an empty texture. Every image is padded
// to powers of two at four bytes a texel; the two generated 128 x 128 particle textures and the
// world scene's one 1280 x 720 colour target come on top.
inline std::string memoryLine(const std::map<std::string, ImageSize>& sizes = {}) {
    using testing_support::FONT_FILES;
    using testing_support::TEXTURE_FILES;
    unsigned bytes = 2 * 128 * 128 * 4 + 1280 * 720 * 4;
    std::vector<const char*> files(std::begin(TEXTURE_FILES), std::end(TEXTURE_FILES));
    files.insert(files.end(), std::begin(FONT_FILES), std::end(FONT_FILES));
    for (const char* f : files) {
        ImageSize size{0, 0};
        auto given = sizes.find(f);
        if (given != sizes.end())
            size = given->second;
        else
            EXPECT_TRUE(pngSize(std::string(DATA_ROOT) + "/" + f, size)) << f;
        if (size.w && size.h) bytes += nextPow2(size.w) * nextPow2(size.h) * 4;
    }
    char line[128];
    snprintf(line, sizeof line, "Used texture memory: %f megabytes\n",
             (double)((float)bytes * (1.0f / 1048576.0f)));
    return line;
}

} // namespace e2e
