// Images decoded into engine mip chains.
#ifndef E3D_TOOLS_TEXTURE_H
#define E3D_TOOLS_TEXTURE_H

#include <stdint.h>

#include "engine3d.h"

// An 8888 mip chain of power-of-two levels; level 0 is the host's, levels 1-3
// the engine's.
struct ModelTexture {
  MipChain chain;
  uint32_t option;  // stage option: 8888, bilinear, and the key when some texels are cut out
};

// Makes a texture from 8-bit RGBA rows (width x height, tightly packed),
// resampled to powers of two no larger than maxSide. Null when out of memory.
ModelTexture* CreateModelTexture(const unsigned char* rgba, int width, int height, int maxSide);
// Decodes an image file or an encoded image in memory (PNG, JPEG, TGA, BMP ...).
// Null when it cannot be decoded; *reason then says why.
ModelTexture* LoadModelTexture(const char* path, int maxSide, const char** reason);
ModelTexture* DecodeModelTexture(const unsigned char* data, int size, int maxSide, const char** reason);
void FreeModelTexture(ModelTexture* texture);

#endif
