#pragma once
// OpenGL with every entry point that Linux's libGL exports (2.1, framebuffer objects), declared
// directly: no loader of our own stands between the engine and the driver.

#ifndef GL_GLEXT_PROTOTYPES
#define GL_GLEXT_PROTOTYPES 1
#endif
#include <GL/gl.h>
#include <GL/glext.h>
