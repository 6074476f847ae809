#pragma once
// Decodes image files (anything SDL_image reads; the game uses PNG) into Surfaces and Textures.

struct SDL_Surface;

namespace orvel {

class Surface;
class Texture;

class ImageLoader {
public:
    // 0 after a successful load(), 1 after a failed loadBuf(), 2 after a failed load().
    static int lastError;

    // A new Surface (caller owns it) or null. With `colorKey`, every pixel equal to the
    // top-left one becomes transparent black.
    static Surface* load(const char* path, bool colorKey);
    // The same from memory. Success leaves lastError as it was.
    static Surface* loadBuf(const void* data, unsigned size, bool colorKey);
    // A new Texture (caller owns it), never null: a failed load gives an empty texture of width 0.
    static Texture* loadTexture(const char* path, bool colorKey);
    static Texture* loadBufTexture(const void* data, unsigned size, bool colorKey);

    // Starts decoding the files `paths` one after another on a thread of its own, so that
    // load() of each of them, asked for in the same order, finds the file already decoded while
    // this thread converts and uploads the one before. A path asked for out of that order is
    // decoded on the spot, and so is every path when no thread can be started. finishPrefetch()
    // waits for the thread and drops what nobody took. The paths must stay valid until then.
    static void prefetch(const char* const* paths, unsigned count);
    static void finishPrefetch();

    // Converts `image` into a Surface, channel by channel through its own pixel format, and frees
    // it. Without `keepAlpha` every pixel comes out opaque.
    static Surface* prepareImage(SDL_Surface* image, bool keepAlpha, bool colorKey);

private:
    static Texture* textureOf(Surface* image);
};

} // namespace orvel
