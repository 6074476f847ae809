#include "engine/ImageLoader.h"

#include <SDL/SDL.h>
#include <SDL/SDL_image.h>

#include "engine/Color.h"
#include "engine/Surface.h"
#include "engine/Texture.h"

namespace orvel {

int ImageLoader::lastError = 0;

namespace {

// 32-bit with alpha in the display's layout; without a video mode (tools, tests) the engine's own
// RGBA layout serves instead.
SDL_Surface* toDisplayFormat(SDL_Surface* image) {
    if (SDL_GetVideoSurface()) {
        if (SDL_Surface* converted = SDL_DisplayFormatAlpha(image)) return converted;
    }
    SDL_PixelFormat format = {};
    format.BitsPerPixel = 32;
    format.BytesPerPixel = 4;
    format.Rmask = Color::rmask;
    format.Gmask = Color::gmask;
    format.Bmask = Color::bmask;
    format.Amask = Color::amask;
    format.Rshift = Color::rshift;
    format.Gshift = Color::gshift;
    format.Bshift = Color::bshift;
    format.Ashift = Color::ashift;
    format.alpha = 255;
    return SDL_ConvertSurface(image, &format, SDL_SWSURFACE);
}

uint32_t channel(uint32_t pixel, uint32_t mask, uint8_t shift, uint8_t loss) { return ((pixel & mask) >> shift) << loss; }

} // namespace

Surface* ImageLoader::load(const char* path, bool colorKey) {
    SDL_Surface* loaded = IMG_Load(path);
    if (!loaded) {
        lastError = 2;
        return nullptr;
    }
    SDL_Surface* converted = toDisplayFormat(loaded);
    SDL_FreeSurface(loaded);
    if (!converted) {
        lastError = 2;
        return nullptr;
    }
    lastError = 0;
    return prepareImage(converted, true, colorKey);
}

Surface* ImageLoader::loadBuf(const void* data, unsigned size, bool colorKey) {
    SDL_RWops* stream = SDL_RWFromConstMem(data, (int)size);
    SDL_Surface* loaded = stream ? IMG_Load_RW(stream, 0) : nullptr;
    if (stream) SDL_FreeRW(stream);
    SDL_Surface* converted = loaded ? toDisplayFormat(loaded) : nullptr;
    if (loaded) SDL_FreeSurface(loaded);
    if (!converted) {
        lastError = 1;
        return nullptr;
    }
    return prepareImage(converted, true, colorKey);
}

Texture* ImageLoader::loadTexture(const char* path, bool colorKey) { return textureOf(load(path, colorKey)); }

Texture* ImageLoader::loadBufTexture(const void* data, unsigned size, bool colorKey) {
    return textureOf(loadBuf(data, size, colorKey));
}

Texture* ImageLoader::textureOf(Surface* image) {
    Texture* texture = new Texture(image);
    delete image;
    return texture;
}

Surface* ImageLoader::prepareImage(SDL_Surface* image, bool keepAlpha, bool colorKey) {
    Surface* surface = new Surface(image->w, image->h);
    const SDL_PixelFormat* f = image->format;
    uint32_t color = keepAlpha ? 0 : Color::setA(0, 255);

    if (SDL_MUSTLOCK(image)) SDL_LockSurface(image);
    const uint32_t* row = static_cast<const uint32_t*>(image->pixels);
    for (int y = 0; y < image->h; ++y, row += image->pitch / 4) {
        for (int x = 0; x < image->w; ++x) {
            uint32_t p = row[x];
            color = Color::setR(color, channel(p, f->Rmask, f->Rshift, f->Rloss));
            color = Color::setG(color, channel(p, f->Gmask, f->Gshift, f->Gloss));
            color = Color::setB(color, channel(p, f->Bmask, f->Bshift, f->Bloss));
            if (keepAlpha) color = Color::setA(color, channel(p, f->Amask, f->Ashift, f->Aloss));
            surface->setPixel(x, y, color);
        }
    }
    if (SDL_MUSTLOCK(image)) SDL_UnlockSurface(image);
    SDL_FreeSurface(image);

    if (colorKey) surface->replaceColor(surface->getPixel(0, 0), 0);
    return surface;
}

} // namespace orvel
