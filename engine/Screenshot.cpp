#include "engine/Screenshot.h"

#include <cstring>

#include <SDL/SDL.h>

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

} // namespace

void Screenshot::saveScreenshot(const char* filename) {
    int w = Orvel::getScreenWidth();
    int h = Orvel::getScreenHeight();
    SDL_Surface* image = SDL_CreateRGBSurface(SDL_SWSURFACE, w, h, 32, Color::rmask, Color::gmask, Color::bmask, 0);
    SDL_Surface* frame = SDL_CreateRGBSurface(SDL_SWSURFACE, w, h, 32, Color::rmask, Color::gmask, Color::bmask, 0);
    if (!image || !frame) {
        SDL_FreeSurface(image);
        SDL_FreeSurface(frame);
        return;
    }

    glReadBuffer(shownFrameBuffer());
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glReadPixels(0, 0, w, h, GL_RGBA, GL_UNSIGNED_BYTE, frame->pixels);

    // GL rows run bottom to top, BMP rows as the eye reads them.
    const Uint8* src = static_cast<const Uint8*>(frame->pixels);
    Uint8* dst = static_cast<Uint8*>(image->pixels);
    for (int y = 0; y < h; ++y) memcpy(dst + y * image->pitch, src + (h - 1 - y) * frame->pitch, w * 4);

    if (SDL_RWops* file = SDL_RWFromFile(filename, "wb")) SDL_SaveBMP_RW(image, file, 1);
    SDL_FreeSurface(image);
    SDL_FreeSurface(frame);
}

} // namespace orvel
