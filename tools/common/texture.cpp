// Textures: decode, resample to powers of two, pack 8888, let the engine
// filter the smaller levels.
#include "texture.h"

#include <stdlib.h>
#include <string.h>

#include <stb_image.h>

namespace {

constexpr uint32_t kKey = 0xFF000000u;
constexpr uint32_t kOption8888 = 1, kOptionKey = 2, kOptionBilinear = 4;

// Largest power of two not above n, within 8 .. maxSide (8 gives all four levels).
int PowerOfTwoBelow(int n, int maxSide) {
  int p = 8;
  while (p * 2 <= n && p * 2 <= maxSide) p *= 2;
  return p;
}

// Box-averages the source area under each destination texel, so shrinking
// by large factors does not alias.
void Resample(const unsigned char* src, int sw, int sh, unsigned char* dst, int dw, int dh) {
  for (int y = 0; y < dh; y++) {
    const int y0 = y * sh / dh, y1 = (y + 1) * sh / dh > y0 ? (y + 1) * sh / dh : y0 + 1;
    for (int x = 0; x < dw; x++) {
      const int x0 = x * sw / dw, x1 = (x + 1) * sw / dw > x0 ? (x + 1) * sw / dw : x0 + 1;
      unsigned sum[4] = {0, 0, 0, 0};
      for (int sy = y0; sy < y1; sy++)
        for (int sx = x0; sx < x1; sx++)
          for (int c = 0; c < 4; c++) sum[c] += src[(size_t(sy) * sw + sx) * 4 + c];
      const unsigned n = unsigned((y1 - y0) * (x1 - x0));
      for (int c = 0; c < 4; c++) dst[(size_t(y) * dw + x) * 4 + c] = (unsigned char)(sum[c] / n);
    }
  }
}

}  // namespace

ModelTexture* CreateModelTexture(const unsigned char* rgba, int width, int height, int maxSide) {
  if (rgba == nullptr || width < 1 || height < 1) return nullptr;
  const int w = PowerOfTwoBelow(width, maxSide), h = PowerOfTwoBelow(height, maxSide);
  unsigned char* scaled = static_cast<unsigned char*>(malloc(size_t(w) * h * 4));
  uint32_t* texels = static_cast<uint32_t*>(malloc(size_t(w) * h * 4));
  ModelTexture* t = static_cast<ModelTexture*>(calloc(1, sizeof(ModelTexture)));
  if (scaled == nullptr || texels == nullptr || t == nullptr) {
    free(scaled);
    free(texels);
    free(t);
    return nullptr;
  }
  Resample(rgba, width, height, scaled, w, h);
  // Texels under half coverage become the key; a real opaque black is
  // nudged off it.
  bool cut = false;
  for (int i = 0; i < w * h; i++) {
    const unsigned char* p = scaled + size_t(i) * 4;
    uint32_t texel = 0xFF000000u | uint32_t(p[0]) << 16 | uint32_t(p[1]) << 8 | p[2];
    if (p[3] < 128) {
      texel = kKey;
      cut = true;
    } else if (texel == kKey) {
      texel |= 0x010101u;
    }
    texels[i] = texel;
  }
  free(scaled);
  t->chain.levelPixels[0] = texels;
  t->chain.levelWidths[0] = w;
  t->chain.levelHeights[0] = h;
  t->chain.levelPitches[0] = w * 4;
  CreateMMTexture8888(&t->chain);
  t->option = kOption8888 | kOptionBilinear | (cut ? kOptionKey : 0);
  return t;
}

static ModelTexture* FromStb(unsigned char* rgba, int w, int h, int maxSide, const char** reason) {
  if (rgba == nullptr) {
    *reason = stbi_failure_reason();
    return nullptr;
  }
  ModelTexture* t = CreateModelTexture(rgba, w, h, maxSide);
  stbi_image_free(rgba);
  if (t == nullptr) *reason = "out of memory";
  return t;
}

ModelTexture* LoadModelTexture(const char* path, int maxSide, const char** reason) {
  int w = 0, h = 0, n = 0;
  unsigned char* rgba = stbi_load(path, &w, &h, &n, 4);
  return FromStb(rgba, w, h, maxSide, reason);
}

ModelTexture* DecodeModelTexture(const unsigned char* data, int size, int maxSide, const char** reason) {
  int w = 0, h = 0, n = 0;
  unsigned char* rgba = stbi_load_from_memory(data, size, &w, &h, &n, 4);
  return FromStb(rgba, w, h, maxSide, reason);
}

void FreeModelTexture(ModelTexture* texture) {
  if (texture == nullptr) return;
  free(texture->chain.levelPixels[0]);
  for (int i = 1; i < 4; i++)
    if (texture->chain.levelPixels[i] != nullptr) FreeMemory(texture->chain.levelPixels[i]);
  free(texture);
}
