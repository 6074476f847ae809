#include "engine/Screenshot.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

#include <SDL/SDL.h>
#include <sys/stat.h>

#include "engine/Color.h"
#include "engine/GL.h"
#include "engine/Orvel.h"

namespace orvel {

namespace {

// Mesa's software rasterisers keep the front buffer of an X window as a private copy that a
// buffer swap never updates, while the back buffer survives the swap intact; there the frame just
// shown is read from the back buffer. Every other driver shows it in the front buffer.
GLenum shownFrameBuffer() {
    static GLenum buffer = 0;
    if (!buffer) {
        const char* renderer = reinterpret_cast<const char*>(glGetString(GL_RENDERER));
        bool softwareOverX = renderer && (strstr(renderer, "llvmpipe") || strstr(renderer, "softpipe"));
        buffer = softwareOverX ? GL_BACK : GL_FRONT;
    }
    return buffer;
}

void reportFailure(const char* filename, const char* reason) {
    fprintf(stderr, "Could not write %s: %s\n", filename, reason);
}

// Writes `image` as a BMP file; a failure is reported in one line. A half-written regular file is
// removed, as it would only look like a broken picture; links and devices are left alone.
void writeBmp(SDL_Surface* image, const char* filename) {
    // Our own stream rather than SDL_RWFromFile, so the system's reason for a failure is known.
    FILE* file = fopen(filename, "wb");
    if (!file) {
        reportFailure(filename, strerror(errno));
        return;
    }
    // SDL 1.2 judges the save by whether its error text is empty, so no older error may count.
    SDL_ClearError();
    SDL_RWops* stream = SDL_RWFromFP(file, 0);
    bool isSaved = stream && SDL_SaveBMP_RW(image, stream, 1) == 0;
    int error = ferror(file) ? errno : 0;
    if (fclose(file) != 0 && !error) error = errno;
    if (isSaved && !error) return;
    struct stat written;
    if (lstat(filename, &written) == 0 && S_ISREG(written.st_mode)) remove(filename);
    reportFailure(filename, error ? strerror(error) : SDL_GetError());
}

// The frame as read and the picture turned right way up. Kept from one screenshot to the next
// of the same size, so that taking screenshots leaves the game's memory as it was.
SDL_Surface* upright = nullptr;
SDL_Surface* readBack = nullptr;

bool prepareSurfaces(int w, int h) {
    if (upright && readBack && upright->w == w && upright->h == h) return true;
    SDL_FreeSurface(upright);
    SDL_FreeSurface(readBack);
    upright = SDL_CreateRGBSurface(SDL_SWSURFACE, w, h, 32, Color::rmask, Color::gmask, Color::bmask, 0);
    readBack = SDL_CreateRGBSurface(SDL_SWSURFACE, w, h, 32, Color::rmask, Color::gmask, Color::bmask, 0);
    return upright && readBack;
}

} // namespace

void Screenshot::saveScreenshot(const char* filename) {
    int w = Orvel::getScreenWidth();
    int h = Orvel::getScreenHeight();
    if (!prepareSurfaces(w, h)) {
        reportFailure(filename, SDL_GetError());
        return;
    }

    glReadBuffer(shownFrameBuffer());
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glReadPixels(0, 0, w, h, GL_RGBA, GL_UNSIGNED_BYTE, readBack->pixels);

    // GL rows run bottom to top, BMP rows as the eye reads them.
    const Uint8* src = static_cast<const Uint8*>(readBack->pixels);
    Uint8* dst = static_cast<Uint8*>(upright->pixels);
    for (int y = 0; y < h; ++y) memcpy(dst + y * upright->pitch, src + (h - 1 - y) * readBack->pitch, w * 4);

    writeBmp(upright, filename);
}

} // namespace orvel
