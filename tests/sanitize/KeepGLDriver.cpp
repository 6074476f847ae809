// Sanitizer builds only: holds Mesa's software GL driver in memory until the process ends. SDL_Quit
// closes the display and Mesa unloads its driver, and with it the globals that point at small
// caches the driver never frees; LeakSanitizer would then report those blocks from a module it can
// no longer name, which no suppression can match. Linked into every program of the sanitizer build.

#include <dlfcn.h>

// Named on the link line so that the linker takes this file out of its library into every program.
extern "C" {
int nightvectorKeepGLDriver = 0;
}

namespace {

// Every Mesa driver is a hard link to this one file, so it is the one loaded whatever the display.
const char* const GL_DRIVER = "/usr/lib/x86_64-linux-gnu/dri/swrast_dri.so";

struct DriverHold {
    // Missing on a machine without Mesa: then there is nothing to hold.
    DriverHold() { dlopen(GL_DRIVER, RTLD_LAZY | RTLD_LOCAL | RTLD_NODELETE); }
} hold;

} // namespace
