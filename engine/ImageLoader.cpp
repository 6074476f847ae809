#include "engine/ImageLoader.h"

#include <condition_variable>
#include <malloc.h>
#include <cstring>
#include <mutex>
#include <system_error>
#include <thread>
#include <vector>

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

// A 32-bit image with an alpha channel of its own is read as it is: the conversion would only
// copy its pixels unchanged (SDL converts with blending off), at a cost at every start-up.
bool isReadableAsIs(const SDL_Surface* image) {
    const SDL_PixelFormat* f = image->format;
    return f->BytesPerPixel == 4 && f->Amask && !f->palette && !f->Rloss && !f->Gloss && !f->Bloss && !f->Aloss &&
           !(image->flags & SDL_SRCCOLORKEY);
}

// The image in a layout prepareImage reads; `image` is freed unless it is returned itself.
SDL_Surface* readable(SDL_Surface* image) {
    if (isReadableAsIs(image)) return image;
    SDL_Surface* converted = toDisplayFormat(image);
    SDL_FreeSurface(image);
    return converted;
}

// Files decoded ahead on a thread of their own; the loading thread takes them in order.
struct Prefetch {
    std::vector<const char*> paths;
    std::vector<SDL_Surface*> images;
    unsigned decoded = 0; // files the decoding thread has finished, guarded by `lock`
    unsigned taken = 0;   // files the loading thread has passed
    std::mutex lock;
    std::condition_variable progress;
    std::thread decoder;
};

Prefetch* prefetching = nullptr;

// The decoded file `path`: the prefetched one when it is next in line (files skipped on the way
// are freed), otherwise decoded here and now.
SDL_Surface* decode(const char* path) {
    Prefetch* p = prefetching;
    if (p) {
        for (unsigned i = p->taken; i < p->paths.size(); ++i) {
            if (std::strcmp(p->paths[i], path) != 0) continue;
            std::unique_lock<std::mutex> guard(p->lock);
            p->progress.wait(guard, [p, i] { return p->decoded > i; });
            for (unsigned k = p->taken; k < i; ++k) SDL_FreeSurface(p->images[k]);
            p->taken = i + 1;
            return p->images[i];
        }
    }
    return IMG_Load(path);
}

uint32_t channel(uint32_t pixel, uint32_t mask, uint8_t shift, uint8_t loss) { return ((pixel & mask) >> shift) << loss; }

} // namespace

Surface* ImageLoader::load(const char* path, bool colorKey) {
    SDL_Surface* loaded = decode(path);
    if (!loaded) {
        lastError = 2;
        return nullptr;
    }
    SDL_Surface* converted = readable(loaded);
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
    SDL_Surface* converted = loaded ? readable(loaded) : nullptr;
    if (!converted) {
        lastError = 1;
        return nullptr;
    }
    return prepareImage(converted, true, colorKey);
}

void ImageLoader::prefetch(const char* const* paths, unsigned count) {
    finishPrefetch();
    Prefetch* p = new Prefetch();
    p->paths.assign(paths, paths + count);
    p->images.assign(count, nullptr);
    try {
        p->decoder = std::thread([p] {
            for (unsigned i = 0; i < p->paths.size(); ++i) {
                SDL_Surface* image = IMG_Load(p->paths[i]);
                std::lock_guard<std::mutex> guard(p->lock);
                p->images[i] = image;
                p->decoded = i + 1;
                p->progress.notify_all();
            }
        });
    } catch (const std::system_error&) {
        // No thread to be had (a limit on processes or memory): each file is decoded when asked for.
        delete p;
        return;
    }
    prefetching = p;
}

void ImageLoader::finishPrefetch() {
    Prefetch* p = prefetching;
    if (!p) return;
    prefetching = nullptr;
    p->decoder.join();
    for (unsigned k = p->taken; k < p->images.size(); ++k) SDL_FreeSurface(p->images[k]);
    delete p;
    // The decoded images came from the decoding thread's own heap arena, which keeps their freed
    // memory for a next time that never comes; hand it back to the system.
    malloc_trim(0);
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
    // Every pixel is written below, except the stand-in pixel of an empty image.
    const bool isEmpty = image->w < 1 || image->h < 1;
    Surface* surface =
        isEmpty ? new Surface(image->w, image->h) : new Surface(image->w, image->h, Surface::Unfilled());
    const SDL_PixelFormat* f = image->format;

    // Each channel is taken out of the image's pixel, limited to 255 and put where Color keeps
    // it, as Color::setR and its siblings do, written out here for the loop's sake.
    auto place = [](uint16_t value, uint32_t mask, uint8_t shift) -> uint32_t {
        return ((uint32_t)(value > 255 ? 255 : value) << shift) & mask;
    };
    const uint32_t opaque = keepAlpha ? 0 : Color::setA(0, 255);
    if (SDL_MUSTLOCK(image)) SDL_LockSurface(image);
    const uint32_t* row = static_cast<const uint32_t*>(image->pixels);
    uint32_t* out = surface->pixels;
    for (int y = 0; y < image->h; ++y, row += image->pitch / 4, out += surface->width) {
        for (int x = 0; x < image->w; ++x) {
            const uint32_t p = row[x];
            uint32_t color = opaque;
            color |= place(channel(p, f->Rmask, f->Rshift, f->Rloss), Color::rmask, Color::rshift);
            color |= place(channel(p, f->Gmask, f->Gshift, f->Gloss), Color::gmask, Color::gshift);
            color |= place(channel(p, f->Bmask, f->Bshift, f->Bloss), Color::bmask, Color::bshift);
            if (keepAlpha) color |= place(channel(p, f->Amask, f->Ashift, f->Aloss), Color::amask, Color::ashift);
            out[x] = color;
        }
    }
    if (SDL_MUSTLOCK(image)) SDL_UnlockSurface(image);
    SDL_FreeSurface(image);

    if (colorKey) surface->replaceColor(surface->getPixel(0, 0), 0);
    return surface;
}

} // namespace orvel
