#include "engine/Texture.h"

#include <algorithm>

#include "engine/GL.h"
#include "engine/Math.h"
#include "engine/Surface.h"

namespace orvel {

uint32_t Texture::usedMemory = 0;

namespace {

void upload(const Surface* image) {
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, image->width, image->height, 0, GL_RGBA, GL_UNSIGNED_BYTE,
                 image->pixels);
}

} // namespace

Texture::Texture(const Surface* image)
    : unit(GL_TEXTURE0), id(0), sScale(1), tScale(1), spare(0), width(0), height(0), depth(0),
      target(GL_TEXTURE_2D), internalFormat(GL_RGBA8), visible(TexelBox::unknown()) {
    glGenTextures(1, &id);
    glBindTexture(target, id);
    glTexParameteri(target, GL_TEXTURE_WRAP_S, GL_REPEAT);
    glTexParameteri(target, GL_TEXTURE_WRAP_T, GL_REPEAT);
    glTexParameteri(target, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexParameteri(target, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    if (!image) return;
    visible = TexelBox::ofVisible(*image);

    if (Math::isPowerOf2(image->width) && Math::isPowerOf2(image->height)) {
        width = image->width;
        height = image->height;
        upload(image);
    } else {
        Surface padded(Math::getNextPow2(image->width), Math::getNextPow2(image->height));
        padded.copy(image, 0, 0, 0, 0, -1, -1);
        sScale = (float)image->width / (float)padded.width;
        tScale = (float)image->height / (float)padded.height;
        width = padded.width;
        height = padded.height;
        upload(&padded);
    }
    usedMemory += width * height * 4;
}

Texture::Texture(int w, int h, int d, unsigned textureTarget, unsigned format)
    : unit(0), id(0), sScale(1), tScale(1), spare(0), width(std::max(w, 8)), height(std::max(h, 8)),
      depth(std::max(d, 2)), target(textureTarget), internalFormat(format), visible(TexelBox::unknown()) {
    glGenTextures(1, &id);
    glBindTexture(target, id);
    glTexParameteri(target, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexParameteri(target, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    glTexParameteri(target, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    switch (target) {
    case GL_TEXTURE_2D:
        glTexParameteri(target, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
        glTexImage2D(target, 0, internalFormat, width, height, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
        break;
    case GL_TEXTURE_3D:
        glTexParameteri(target, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
        glTexParameteri(target, GL_TEXTURE_WRAP_R, GL_CLAMP_TO_EDGE);
        glTexImage3D(target, 0, internalFormat, width, height, depth, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
        break;
    case GL_TEXTURE_1D:
        glTexImage1D(target, 0, internalFormat, width, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
        break;
    default:
        break;
    }
    glBindTexture(target, 0);
    usedMemory += width * height * 4;
}

Texture::~Texture() {
    glDeleteTextures(1, &id);
    usedMemory -= width * height * 4;
}

void Texture::bind(unsigned textureUnit) {
    unit = textureUnit;
    glActiveTexture(unit);
    glBindTexture(target, id);
}

void Texture::unbind() {
    glActiveTexture(unit);
    glBindTexture(target, 0);
}

} // namespace orvel
